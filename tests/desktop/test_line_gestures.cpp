// SPDX-License-Identifier: MIT
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "desktop/line_moves.h"
#include "desktop/note_folding.h"
#include "desktop/shown_editor.h"

namespace {

using namespace tessaly::desktop;
using tessaly::tests::ShownEditor;

/// Takes a line by its handle, and drops it above or below the middle of another.
enum class Side { above, below };
void dragLine(ShownEditor& editor, int line, int onto, Side side, int right = 0) {
    editor.draw();
    const QRectF area =
        editor.layout().blockBoundingRect(editor.document()->findBlockByNumber(onto));
    const QPoint from = editor.handleOfLine(line);
    const qreal y = side == Side::above ? area.top() + 3 : area.bottom() - 3;
    const QPoint to(from.x() + right, editor.inView({0, y}).y());
    QTest::mousePress(editor.viewport(), Qt::LeftButton, {}, from);
    QTest::mouseMove(editor.viewport(), from + QPoint(0, 20));
    QTest::mouseMove(editor.viewport(), to);
    QTest::mouseRelease(editor.viewport(), Qt::LeftButton, {}, to);
}

struct PastingEditor : ShownEditor {
    using ShownEditor::ShownEditor;
    void pasteText(const char* text) {
        QMimeData pasted;
        pasted.setText(QString::fromUtf8(text));
        insertFromMimeData(&pasted);
    }
};

}  // namespace

TEST_CASE("dragged lines take their lines along, as one step") {
    constexpr std::string_view text = "* a\n\t* b\n\t* c\n* d\nwords\n# Head\nend\n";
    struct Row {
        const char* what;
        int line;
        int onto;
        Side side;
        int right;
        std::string_view after;
    };
    const Row rows[] = {
        {"an item behind another", 0, 3, Side::below, 0,
         "* d\n* a\n\t* b\n\t* c\nwords\n# Head\nend\n"},
        {"up", 3, 0, Side::above, 0, "* d\n* a\n\t* b\n\t* c\nwords\n# Head\nend\n"},
        {"a child among its siblings", 1, 2, Side::below, 0,
         "* a\n\t* c\n\t* b\n* d\nwords\n# Head\nend\n"},
        {"a child to the outer level", 2, 3, Side::below, -40,
         "* a\n\t* b\n* d\n* c\nwords\n# Head\nend\n"},
        {"below an item, as its child", 0, 3, Side::below, 40,
         "* d\n\t* a\n\t\t* b\n\t\t* c\nwords\n# Head\nend\n"},
        {"no deeper than there is a parent", 3, 3, Side::above, 200,
         "* a\n\t* b\n\t* c\n\t\t* d\nwords\n# Head\nend\n"},
        {"no child of words", 3, 4, Side::below, 40,
         "* a\n\t* b\n\t* c\nwords\n* d\n# Head\nend\n"},
        {"a heading with its lines", 5, 0, Side::above, 0,
         "# Head\nend\n* a\n\t* b\n\t* c\n* d\nwords\n"},
        {"to the end", 4, 7, Side::below, 0, "* a\n\t* b\n\t* c\n* d\n# Head\nend\nwords\n"},
        {"onto itself", 0, 1, Side::below, 0, text},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        ShownEditor editor(text);
        dragLine(editor, row.line, row.onto, row.side, row.right);
        CHECK(editor.text() == row.after);
        CHECK(editor.canUndo() == (row.after != text));
        editor.undo();
        CHECK(editor.text() == text);
        CHECK_FALSE(editor.canUndo());
    }
}

TEST_CASE("a drag can be given up, and starts from a box too") {
    ShownEditor editor("* [ ] a\n* [ ] b\n");
    editor.setEditing(NoteEditor::Editing::allowed);
    editor.draw();
    int clicked = 0;
    QObject::connect(&editor, &NoteTextView::boxClicked, [&] { ++clicked; });
    QTest::mousePress(editor.viewport(), Qt::LeftButton, {}, editor.boxOfLine(0));
    QTest::mouseMove(editor.viewport(), editor.boxOfLine(0) + QPoint(0, 20));
    QTest::mouseMove(editor.viewport(), editor.boxOfLine(1) + QPoint(0, 8));
    editor.press(Qt::Key_Escape);
    QTest::mouseRelease(editor.viewport(), Qt::LeftButton, {}, editor.boxOfLine(1));
    CHECK(editor.text() == "* [ ] a\n* [ ] b\n");
    QTest::mousePress(editor.viewport(), Qt::LeftButton, {}, editor.boxOfLine(0));
    QTest::mouseMove(editor.viewport(), editor.boxOfLine(0) + QPoint(0, 20));
    QTest::mouseMove(editor.viewport(), editor.boxOfLine(1) + QPoint(0, 8));
    QTest::mouseRelease(editor.viewport(), Qt::LeftButton, {}, editor.boxOfLine(1) + QPoint(0, 8));
    CHECK(editor.text() == "* [ ] b\n* [ ] a\n");
    CHECK(clicked == 0);
}

TEST_CASE("a drag ends when the text changes below it, and by another button") {
    static constexpr std::string_view text = "* a\n* b\n* c\n* d\n";
    struct Row {
        const char* what;
        void (*happens)(ShownEditor& editor, QPoint place);
        std::string_view after;
    };
    const Row rows[] = {
        {"others write a line above",
         [](ShownEditor& editor, QPoint) { editor.replaceText("new\n" + std::string(text)); },
         "new\n* a\n* b\n* c\n* d\n"},
        {"others take lines away", [](ShownEditor& editor, QPoint) { editor.replaceText("* a\n"); },
         "* a\n"},
        {"another note is shown", [](ShownEditor& editor, QPoint) { editor.setText({}); }, ""},
        {"a key writes", [](ShownEditor& editor, QPoint) { editor.press(Qt::Key_X); },
         "x* a\n* b\n* c\n* d\n"},
        {"the right button",
         [](ShownEditor& editor, QPoint place) {
             QTest::mouseClick(editor.viewport(), Qt::RightButton, {}, place);
         },
         text},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        ShownEditor editor(text);
        editor.draw();
        const QPoint from = editor.boxOfLine(1);
        const QPoint to = editor.boxOfLine(3) + QPoint(0, 8);
        QTest::mousePress(editor.viewport(), Qt::LeftButton, {}, from);
        QTest::mouseMove(editor.viewport(), from + QPoint(0, 20));
        QTest::mouseMove(editor.viewport(), to);
        row.happens(editor, to);
        editor.draw();
        QTest::mouseRelease(editor.viewport(), Qt::LeftButton, {}, to);
        CHECK(editor.text() == row.after);
    }
}

TEST_CASE("where nothing is edited, handles stand where lines fold") {
    struct Row {
        NoteEditor::Editing editing;
        int line;
        bool hasHandle;
    };
    const Row rows[] = {
        {NoteEditor::Editing::allowed, 1, true},
        {NoteEditor::Editing::never, 1, false},
        {NoteEditor::Editing::never, 2, true},
    };
    for (const Row& row : rows) {
        CAPTURE(row.line);
        ShownEditor editor("* a\nwords\n* b\n\t* c\n");
        editor.setEditing(row.editing);
        REQUIRE(QTest::qWaitForWindowActive(&editor));
        editor.clearFocus();  // a caret blinks
        const QImage before = editor.grab().toImage();
        QTest::mouseMove(editor.viewport(), editor.handleOfLine(row.line) + QPoint(200, 0));
        CHECK((editor.grab().toImage() != before) == row.hasHandle);
    }
}

TEST_CASE("a double click selects the word that its first click has hit") {
    ShownEditor editor("one\nHere **is** some text\n");
    editor.setFocus();
    REQUIRE(QTest::qWaitForWindowActive(&editor));
    editor.draw();
    const int word = 4 + 17;  // in "text"
    const auto placeOf = [&](int position) {
        QTextCursor there = editor.textCursor();
        there.setPosition(position);
        return editor.cursorRect(there).center();
    };
    const QPoint place = placeOf(word) + QPoint(2, 0);
    editor.click(place);
    REQUIRE((placeOf(word) - place).manhattanLength() > 10);
    QTest::mouseDClick(editor.viewport(), Qt::LeftButton, {}, place);
    CHECK(editor.textCursor().selectedText() == QStringLiteral("text"));
}

TEST_CASE("markup is shown again once a menu has taken the release of a click") {
    ShownEditor editor("* one\n* two\n");
    editor.setFocus();
    REQUIRE(QTest::qWaitForWindowActive(&editor));
    editor.draw();
    const auto markupOf = [&](int line) {
        editor.draw();
        return BlockLook::of(editor.document()->findBlockByNumber(line))->markup;
    };
    const QPoint place = editor.boxOfLine(1);
    QTest::mousePress(editor.viewport(), Qt::RightButton, {}, place);
    QContextMenuEvent asked(QContextMenuEvent::Mouse, place, editor.viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(editor.viewport(), &asked);
    auto* menu = editor.findChild<QMenu*>();
    REQUIRE(menu != nullptr);
    CHECK(markupOf(1) == Markup::quiet);
    menu->close();
    CHECK(markupOf(1) == Markup::shown);
    editor.press(Qt::Key_Up);
    CHECK(markupOf(0) == Markup::shown);
}

TEST_CASE("lines move whatever ends the text") {
    struct Row {
        std::string_view text;
        Lines lines;
        LineTarget target;
        std::string_view after;
    };
    const Row rows[] = {
        {"a\nb\nc", {2, 2}, {0, 0}, "c\na\nb"},
        {"a\nb\nc", {0, 0}, {3, 0}, "b\nc\na"},
        {"a\nb\nc\n", {0, 0}, {3, 0}, "b\nc\na\n"},
        {"\nb", {1, 1}, {0, 0}, "b\n"},
        {"a\nb", {0, 1}, {2, 0}, "a\nb"},
        {"a\n    b\n", {1, 1}, {1, -1}, "a\nb\n"},
        {"a\n  b\n", {1, 1}, {0, -1}, "b\na\n"},
        {"a\n\t\tb\n\n", {1, 2}, {0, 1}, "\t\t\tb\n\na\n"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.text);
        ShownEditor editor(row.text);
        editor.moveLines(row.lines, row.target);
        CHECK(editor.text() == row.after);
        editor.undo();
        CHECK(editor.text() == row.text);
    }
}

TEST_CASE("a folded line moves with what it hides, and past another") {
    ShownEditor editor("* a\n\t* b\n* c\n\t* d\n* e\n");
    editor.folding().toggle(0);
    editor.folding().toggle(2);
    editor.goToLine(0, 1);
    editor.mark(tessaly::editor::MarkAction::moveDown);
    CHECK(editor.text() == "* c\n\t* d\n* a\n\t* b\n* e\n");
    CHECK(editor.seenLines() == "0 2 4 5");
    CHECK(editor.caret() == "2:1");
    editor.mark(tessaly::editor::MarkAction::moveUp);
    CHECK(editor.text() == "* a\n\t* b\n* c\n\t* d\n* e\n");
    CHECK(editor.seenLines() == "0 2 4 5");
    editor.mark(tessaly::editor::MarkAction::moveUp);
    CHECK(editor.text() == "* a\n\t* b\n* c\n\t* d\n* e\n");
}

TEST_CASE("an address that is pasted over words becomes their link") {
    struct Row {
        std::string_view text;
        int from;
        int to;
        const char* pasted;
        std::string_view after;
    };
    const Row rows[] = {
        {"see the site now", 4, 12, "https://example.org/a?b=c",
         "see [the site](https://example.org/a?b=c) now"},
        {"see the site now", 4, 13, " https://example.org\n",
         "see [the site](https://example.org) now"},
        {"wiki", 0, 4, "https://example.org/a_(b)", "[wiki](https://example.org/a_(b))"},
        {"wiki", 0, 4, "https://example.org/a)b", "[wiki](https://example.org/a%29b)"},
        {"mail", 0, 4, "MAILTO:a@example.org", "[mail](MAILTO:a@example.org)"},
        {"a [b] c", 0, 7, "https://example.org", "https://example.org"},
        {"two\nlines", 0, 9, "https://example.org", "https://example.org"},
        {"https://example.com", 0, 19, "https://example.org", "https://example.org"},
        {"words", 0, 5, "see https://example.org", "see https://example.org"},
        {"words", 0, 5, "file:///etc/passwd", "file:///etc/passwd"},
        {"words", 5, 5, "https://example.org", "wordshttps://example.org"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.text);
        CAPTURE(row.pasted);
        PastingEditor editor(row.text);
        QTextCursor selection(editor.document());
        selection.setPosition(row.from);
        selection.setPosition(row.to, QTextCursor::KeepAnchor);
        editor.setTextCursor(selection);
        editor.pasteText(row.pasted);
        CHECK(editor.text() == row.after);
        editor.undo();
        CHECK(editor.text() == row.text);
    }
    PastingEditor plain("words");
    plain.setLinkPaste(NoteEditor::LinkPaste::asText);
    plain.selectAll();
    plain.pasteText("https://example.org");
    CHECK(plain.text() == "https://example.org");
}
