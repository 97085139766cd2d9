// SPDX-License-Identifier: MIT
// The editor on a note that holds everything.
#include <QScrollBar>
#include <QTextBlock>
#include <string>

#include "desktop/note_editor.h"
#include "desktop/note_folding.h"
#include "desktop/note_layout.h"
#include "desktop/pictures/stage.h"

namespace tessaly::pictures {

namespace {

constexpr const char* kitchen = "Home/New kitchen.txt";

desktop::NoteEditor& editorOf(Stage& stage) {
    return *stage.window().findChild<desktop::NoteEditor*>();
}

int lineWith(const desktop::NoteEditor& editor, const QString& words) {
    return editor.document()->find(words).blockNumber();
}

void showTop(Stage& stage) {
    stage.goTo(kitchen);
    stage.settle(400);
    stage.take(QStringLiteral("editor"));
}

void showRest(Stage& stage) {
    stage.goTo(kitchen);
    QScrollBar& bar = *editorOf(stage).verticalScrollBar();
    bar.setValue(bar.maximum());
    stage.settle(400);
    bar.setValue(bar.maximum());
    stage.settle(400);
    stage.take(QStringLiteral("editor-rest"));
}

void showMarkup(Stage& stage) {
    stage.goTo(kitchen);
    desktop::NoteEditor& editor = editorOf(stage);
    editor.setFocus();
    editor.goToLine(1, 20);
    editor.verticalScrollBar()->setValue(0);
    stage.settle();
    stage.take(QStringLiteral("editor-markup"));
}

void showFolded(Stage& stage) {
    stage.goTo(kitchen);
    desktop::NoteEditor& editor = editorOf(stage);
    auto& layout = static_cast<desktop::NoteLayout&>(*editor.document()->documentLayout());
    editor.folding().toggle(lineWith(editor, QStringLiteral("Measure")));
    editor.folding().toggle(lineWith(editor, QStringLiteral("In this order")));
    layout.setPointedBlock(lineWith(editor, QStringLiteral("The plan")));
    stage.settle(400);
    stage.take(QStringLiteral("editor-folded"));
    layout.setPointedBlock(-1);
    editor.folding().toggleAll();
}

void showGerman(Stage& stage) {
    stage.goTo("Home/Neue Küche.txt");
    stage.settle(400);
    stage.take(QStringLiteral("editor-german"));
}

void showArabic(Stage& stage) {
    stage.goTo("Home/المطبخ.txt");
    stage.settle(400);
    stage.take(QStringLiteral("editor-arabic"));
}

/// Lines that are too long to be styled, too long to be broken between words, and a table that is
/// too wide.
void showLongLines(Stage& stage) {
    stage.goTo(kitchen);
    std::string text = "# Long lines\n* [ ] " + std::string(180, 'W') + " #long\n> " +
                       std::string(120, 'q') + "\n| ";
    for (int cell = 0; cell < 12; ++cell) {
        text += "a wide cell | ";
    }
    text += "\n\n**Plain** ";
    while (text.size() < 22'000) {
        text += "a line of more than 20,000 units, ";
    }
    editorOf(stage).setText(text + "\n* [x] behind it");
    stage.settle(400);
    stage.take(QStringLiteral("editor-long"));
    stage.goTo("Ideas.txt");  // the note itself is as it was
}

void showNarrowEditor(Stage& stage) {
    const QSize size = stage.window().size();
    stage.window().resize(520, 760);
    stage.settle(400);
    stage.goTo(kitchen);
    stage.settle(400);
    stage.take(QStringLiteral("editor-narrow"));
    stage.window().resize(size);
    stage.settle(400);
}

}  // namespace

std::vector<View> editorViews() {
    return {{"editor", showTop},
            {"editor-rest", showRest},
            {"editor-markup", showMarkup},
            {"editor-folded", showFolded},
            {"editor-german", showGerman},
            {"editor-arabic", showArabic},
            {"editor-long", showLongLines},
            {"editor-narrow", showNarrowEditor}};
}

}  // namespace tessaly::pictures
