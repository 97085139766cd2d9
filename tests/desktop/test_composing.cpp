// SPDX-License-Identifier: MIT
// Words that an input method has not finished.
#include <QInputMethodEvent>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/document_edits.h"
#include "desktop/layout_checks.h"
#include "desktop/note_folding.h"
#include "desktop/qt_text.h"
#include "desktop/shown_editor.h"

namespace {

using namespace tessaly::desktop;
using tessaly::tests::checkStack;
using tessaly::tests::ShownEditor;

struct ComposingRow {
    const char* what;
    std::string_view text;
    int line;
    int column;
    std::string_view words;
};

constexpr std::string_view composedArabic = "\u0633\u0644\u0627\u0645";

const ComposingRow composingRows[] = {
    {"a heading", "# Head\nbody\n", 0, 4, "xyz"},
    {"a heading's markup", "# Head\nbody\n", 0, 1, "xyz"},
    {"bold words", "a **bold** b **more** c", 0, 6, "xyz"},
    {"between bold words", "a **bold** **more** c", 0, 10, "xyz"},
    {"a tag", "* call #tag >2019-03-07", 0, 9, "xyz"},
    {"a tag's beginning", "* call #", 0, 8, "xyz"},
    {"before a box's text", "* [ ] task\n* [ ] next", 0, 6, "xyz"},
    {"before a box", "* [ ] task\n* [ ] next", 0, 0, "xyz"},
    {"an item within", "- a\n\t- item", 1, 3, "xyz"},
    {"a quote", "> quoted", 0, 2, "xyz"},
    {"a link's title", "see [title](https://example.org) there", 0, 7, "xyz"},
    {"a link's address", "see [title](https://example.org) there", 0, 20, "xyz"},
    {"a picture", "![x](photo.png)\nwords", 0, 4, "xyz"},
    {"code", "```\ncode\n```\n", 1, 2, "xyz"},
    {"a fence", "```\ncode\n```\n", 2, 3, "xyz"},
    {"a cell", "|a|b|\n|---|:-:|\n|c|d|\n", 2, 2, "xyz"},
    {"a table's rule", "|a|b|\n|---|:-:|\n|c|d|\n", 1, 3, "xyz"},
    {"a folded heading", "# Head\none\n# Next\n", 0, 6, "xyz"},
    {"a folded item", "* [ ] one\n\t* two\n* three\n", 0, 9, "xyz"},
    {"right to left", "* [x] \u0645\u0631\u062D\u0628\u0627 a\n* b\n", 0, 8, composedArabic},
    {"right to left in Latin", "* [ ] call me\n", 0, 10, composedArabic},
    {"Latin from right to left", "# \u05E9\u05DC\u05D5\u05DD\nbody\n", 0, 4, "xyz"},
    {"an empty line", "a\n\nb", 1, 0, "xyz"},
    {"nothing", "", 0, 0, "xyz"},
    {"more than a line", "* [ ] words that fill a line, or nearly so, and go on to the next one", 0,
     9, "composed words that fill a line, or nearly so, and go on to the next one"},
};

/// `caret`: in the words, where the input method shows it.
void compose(ShownEditor& editor, const QString& words, int caret) {
    QInputMethodEvent event(words, {{QInputMethodEvent::Cursor, caret, 1, {}}});
    QCoreApplication::sendEvent(&editor, &event);
    editor.draw();
}

void commit(ShownEditor& editor, const QString& words) {
    QInputMethodEvent event;
    event.setCommitString(words);
    QCoreApplication::sendEvent(&editor, &event);
    editor.draw();
}

/// Where the window of the input method goes, in the viewport.
QRectF toldPlace(ShownEditor& editor, Qt::InputMethodQuery query) {
    QInputMethodQueryEvent event(query);
    QCoreApplication::sendEvent(&editor, &event);
    return event.value(query).toRectF().translated(-editor.viewport()->pos());
}

QRectF areaInView(const ShownEditor& editor, int line) {
    const QTextBlock block = editor.document()->findBlockByNumber(line);
    const QRectF area = editor.layout().blockBoundingRect(block);
    return {editor.inView(area.topLeft()), area.size()};
}

/// The line is folded where the row says so.
void beginComposing(ShownEditor& editor, const ComposingRow& row) {
    editor.activateWindow();
    editor.setFocus();
    REQUIRE(QTest::qWaitForWindowActive(&editor));
    if (std::string_view(row.what).find("folded") != std::string_view::npos) {
        editor.folding().toggle(row.line);
    }
    editor.goToLine(row.line, row.column);
    editor.draw();
}

void checkCaretGoesAlong(ShownEditor& editor, const ComposingRow& row) {
    const QString words = qt(row.words);
    QRectF before;
    for (int caret = 0; caret <= static_cast<int>(words.size()); ++caret) {
        CAPTURE(caret);
        compose(editor, words, caret);
        const QRectF place = toldPlace(editor, Qt::ImCursorRectangle);
        CHECK(place.height() > 5);
        CHECK(areaInView(editor, row.line).adjusted(0, -1, 1, 1).contains(place));
        // Between directions, the toolkit has the last two places at one x.
        CHECK((place != before || caret == static_cast<int>(words.size())));
        before = place;
    }
}

}  // namespace

TEST_CASE("composing changes neither text nor undo, and what is written in the end is one step") {
    for (const ComposingRow& row : composingRows) {
        const std::string what = row.what;
        CAPTURE(what);
        ShownEditor editor(row.text);
        beginComposing(editor, row);
        const std::string seen = editor.seenLines();
        const QSizeF size = editor.layout().documentSize();
        QSignalSpy edits(&editor, &NoteEditor::edited);
        checkCaretGoesAlong(editor, row);
        CHECK(editor.text() == row.text);
        CHECK_FALSE(editor.canUndo());
        CHECK(editor.seenLines() == seen);
        checkStack(editor);
        compose(editor, {}, 0);
        CHECK(edits.isEmpty());
        CHECK(editor.text() == row.text);
        CHECK_FALSE(editor.canUndo());
        CHECK(editor.layout().documentSize() == size);
        checkStack(editor);

        compose(editor, qt(row.words).left(2), 2);
        commit(editor, qt(row.words));
        QString expected = documentText(row.text);
        const QTextBlock block = editor.document()->findBlockByNumber(row.line);
        expected.insert(block.position() + row.column, qt(row.words));
        CHECK(editor.text() == utf8(expected));
        CHECK(edits.size() == 1);
        checkStack(editor);
        editor.undo();
        CHECK(editor.text() == row.text);
        CHECK_FALSE(editor.canUndo());
    }
}

TEST_CASE("composing over a selection is one step") {
    ShownEditor editor("* [ ] one two\nthree\n");
    const std::string before = editor.text();
    editor.setTextCursor(cursorAt(*editor.document(), {6, 3}));
    compose(editor, QStringLiteral("xy"), 2);
    compose(editor, QStringLiteral("xyz"), 3);
    commit(editor, QStringLiteral("xyz"));
    CHECK(editor.text() == "* [ ] xyz two\nthree\n");
    editor.undo();
    CHECK(editor.text() == before);
}

TEST_CASE("what others write while the user composes comes in beside it") {
    ShownEditor editor("# Head\n* one\n");
    editor.goToLine(1, 5);
    compose(editor, QStringLiteral("xyz"), 3);
    editor.replaceText("new\n# Head\n* one\n");
    checkStack(editor);
    commit(editor, QStringLiteral("xyz"));
    CHECK(editor.text() == "new\n# Head\n* onexyz\n");
    editor.undo();
    CHECK(editor.text() == "new\n# Head\n* one\n");
}

TEST_CASE("the window of an input method is told where the caret is, in a wide window too") {
    for (const int width : {400, 1400}) {
        CAPTURE(width);
        ShownEditor editor("words\nmore");
        editor.resize(width, 400);
        editor.goToLine(1, 2);
        editor.draw();
        CHECK(toldPlace(editor, Qt::ImCursorRectangle).toRect() == editor.cursorRect());
        CHECK(toldPlace(editor, Qt::ImAnchorRectangle).toRect() == editor.cursorRect());
    }
}
