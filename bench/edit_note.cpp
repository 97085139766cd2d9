// SPDX-License-Identifier: MIT
// edit_note: opens a note of 1 MB and 20,000 lines in the editor, types into it at its start,
// middle and end, resizes it, deletes all and takes that back, and types into a line of 100 KB.
// Prints a line of JSON: for each the milliseconds of the tries, passed and of the processor,
// painting included, and for "peer" those of opening the same text in the toolkit's plain editor
// with the same font.
#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QWindow>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <fmt/ranges.h>

#include "desktop/note_editor.h"
#include "desktop/theme.h"
#include "moment.h"

namespace {

using namespace tessaly;
using bench::Moment;
using desktop::NoteEditor;

constexpr int linesOfNote = 20'000;
constexpr int longLineBytes = 100'000;
constexpr int keys = 200;
constexpr int tries = 9;

const char* const lines[] = {
    "* Call Bob about the #project/alpha plan, and **soon**, or write to him >2019-12-31",
    "\t* [x] Send the minutes to @ann(office) @done(2019-12-30 10:15)",
    "Some words about a meeting, with `code`, and a [title](https://example.org/meeting)",
    "",
    "- Grüße an das Büro in Zürich",
    "## A heading",
    "> quoted, and 会議",
    "\t\t* [-] never mind",
};

std::string noteText() {
    std::string text;
    for (int line = 0; line < linesOfNote; ++line) {
        text += fmt::format(
            "{} {}\n", lines[static_cast<std::size_t>(line) % std::size(lines)],
            line % 7 == 3
                ? "and some more words, to make it a longer line, which is wrapped where it ends"
                : "");
    }
    return text;
}

/// What the tries of something took.
class Tries {
public:
    /// With what the program does at once after it.
    void add(const std::function<void()>& work) {
        const Moment begin = Moment::now();
        work();
        QApplication::processEvents();
        const bench::Taken taken = Moment::now() - begin;
        _passed.push_back(taken.passed);
        _cpu.push_back(taken.cpu);
    }
    void print(const char* name, const char* behind = ", ") const {
        fmt::print("\"{}\": {{\"passed\": [{:.3f}], \"cpu\": [{:.3f}]}}{}", name,
                   fmt::join(_passed, ", "), fmt::join(_cpu, ", "), behind);
    }

private:
    std::vector<double> _passed;
    std::vector<double> _cpu;
};

void showWindow(QWidget& view) {
    view.resize(1000, 900);
    view.show();
    while (view.windowHandle() == nullptr || !view.windowHandle()->isExposed()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QApplication::processEvents();
    view.setFocus();
}

void press(QWidget& view, int key, const QString& text) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(&view, &event);
}

Tries typeAt(NoteEditor& editor, int line, int count) {
    editor.goToLine(line, 3);
    editor.viewport()->repaint();
    QApplication::processEvents();
    Tries taken;
    for (int i = 0; i < count; ++i) {
        const char16_t c = u"word #tag "[i % 10];
        taken.add([&] {
            press(editor, c == u' ' ? Qt::Key_Space : Qt::Key_A, QString(QChar(c)));
            editor.viewport()->repaint();
        });
    }
    return taken;
}

void open(NoteEditor& editor, QPlainTextEdit& peer, const std::string& text) {
    Tries ours;
    Tries peers;
    const QString toolkitText = QString::fromStdString(text);
    for (int i = 0; i < tries; ++i) {
        ours.add([&] {
            editor.setText(text);
            editor.viewport()->repaint();
        });
        peers.add([&] {
            peer.setPlainText(toolkitText);
            peer.viewport()->repaint();
        });
    }
    ours.print("open");
    peers.print("peer");
}

void resize(NoteEditor& editor) {
    Tries taken;
    for (int i = 0; i < tries; ++i) {
        taken.add([&] {
            editor.resize(i % 2 == 0 ? 620 : 1000, 900);
            QApplication::processEvents();
            editor.viewport()->repaint();
        });
    }
    taken.print("resize");
}

void undoOfDeletingAll(NoteEditor& editor) {
    Tries taken;
    for (int i = 0; i < tries; ++i) {
        editor.selectAll();
        press(editor, Qt::Key_Delete, {});
        QApplication::processEvents();
        taken.add([&] {
            editor.undo();
            editor.viewport()->repaint();
        });
    }
    taken.print("undo");
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    desktop::Theme::instance().apply({});
    const QFont font = desktop::Theme::instance().editorFont("System", 15);
    NoteEditor editor;
    editor.setLook({font, 720, {}});
    QPlainTextEdit peer;
    peer.setFont(font);
    showWindow(peer);
    showWindow(editor);

    const std::string text = noteText();
    fmt::print("{{\"bytes\": {}, ", text.size());
    open(editor, peer, text);
    typeAt(editor, 0, keys).print("start");
    typeAt(editor, linesOfNote / 2, keys).print("middle");
    typeAt(editor, linesOfNote - 1, keys).print("end");
    resize(editor);
    undoOfDeletingAll(editor);

    std::string longLine;
    while (longLine.size() < longLineBytes) {
        longLine += "a long line of words that are none of them long ";
    }
    editor.setText("before\n" + longLine + "\nafter");
    if (!editor.canEdit()) {
        std::fputs("edit_note: the long line cannot be edited\n", stderr);
        return 1;
    }
    typeAt(editor, 1, 30).print("longLine", "}\n");
}
