// SPDX-License-Identifier: MIT
#include <QTest>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "desktop/note_folding.h"
#include "desktop/shown_editor.h"
#include "desktop/window_fixture.h"

namespace {

using namespace tessaly::desktop;
using tessaly::tests::ShownEditor;
using tessaly::tests::WindowFixture;

constexpr std::string_view outline =
    "# Plan\n"         // 0
    "Words\n"          // 1
    "## Shopping\n"    // 2
    "* [ ] Food\n"     // 3
    "\t* [ ] Bread\n"  // 4
    "\n"               // 5
    "\t* [ ] Milk\n"   // 6
    "* [ ] Paper\n"    // 7
    "\n"               // 8
    "## Travel\n"      // 9
    "Tickets\n"        // 10
    "# Other\n"        // 11
    "Last";            // 12

void fold(ShownEditor& editor, int line) {
    editor.folding().toggle(line);
}

}  // namespace

TEST_CASE("folding hides what belongs to a line") {
    struct Row {
        std::vector<int> toggled;
        std::string seen;
    };
    const Row rows[] = {
        {{3}, "0 1 2 3 7 8 9 10 11 12"},
        {{2}, "0 1 2 8 9 10 11 12"},
        {{0}, "0 11 12"},
        {{3, 2}, "0 1 2 8 9 10 11 12"},
        {{3, 2, 2}, "0 1 2 3 7 8 9 10 11 12"},
        {{2, 2}, "0 1 2 3 4 5 6 7 8 9 10 11 12"},
        {{1}, "0 1 2 3 4 5 6 7 8 9 10 11 12"},
        {{4}, "0 1 2 3 4 5 6 7 8 9 10 11 12"},
        {{11}, "0 1 2 3 4 5 6 7 8 9 10 11"},
    };
    for (const Row& row : rows) {
        ShownEditor editor(outline);
        for (const int line : row.toggled) {
            fold(editor, line);
        }
        CAPTURE(row.toggled.front());
        CHECK(editor.seenLines() == row.seen);
        CHECK(editor.text() == outline);
        CHECK_FALSE(editor.canUndo());
    }
}

TEST_CASE("the caret passes what is folded, and is never within it") {
    struct Row {
        const char* what;
        int line;
        int column;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        std::string caret;
    };
    const Row rows[] = {
        {"down", 2, 3, Qt::Key_Down, {}, "8:0"},
        {"up", 8, 0, Qt::Key_Up, {}, "2:3"},
        {"right at the end of the head", 2, 11, Qt::Key_Right, {}, "8:0"},
        {"left behind the fold", 8, 0, Qt::Key_Left, {}, "2:11"},
        {"a word on", 2, 11, Qt::Key_Right, Qt::ControlModifier, "8:0"},
        {"a word back", 8, 0, Qt::Key_Left, Qt::ControlModifier, "2:11"},
        {"a selection", 2, 11, Qt::Key_Right, Qt::ShiftModifier, "8:0"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        ShownEditor editor(outline);
        fold(editor, 2);
        editor.goToLine(row.line, row.column);
        editor.press(row.key, row.modifiers);
        CHECK(editor.seenLines() == "0 1 2 8 9 10 11 12");
        // Up keeps the x of the caret, which is somewhere in the heading.
        if (row.key == Qt::Key_Up) {
            CHECK(editor.textCursor().blockNumber() == 2);
        } else {
            CHECK(editor.caret() == row.caret);
        }
    }
    ShownEditor last(outline);
    fold(last, 11);
    last.goToLine(0);
    last.press(Qt::Key_End, Qt::ControlModifier);
    CHECK(last.caret() == "11:7");
    ShownEditor within(outline);
    within.goToLine(4, 2);
    fold(within, 2);
    CHECK(within.caret() == "2:11");
}

TEST_CASE("edits at the edge of a fold show first what they touch") {
    struct Row {
        const char* what;
        int line;
        int column;
        Qt::Key key;
        std::string_view joined;  ///< a line of the text then
    };
    const Row rows[] = {
        {"Delete at the head's end", 2, 11, Qt::Key_Delete, "## Shopping* [ ] Food\n"},
        {"Backspace behind", 8, 0, Qt::Key_Backspace, "* [ ] Paper\n## Travel\n"},
        {"Enter at the head's end", 2, 11, Qt::Key_Return, "## Shopping\n\n* [ ] Food\n"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.what);
        ShownEditor editor(outline);
        fold(editor, 2);
        editor.goToLine(row.line, row.column);
        editor.press(row.key);
        CHECK(editor.text().find(row.joined) != std::string::npos);
        CHECK(editor.seenLines().find("3 4 5 6 7") != std::string::npos);
        editor.undo();
        CHECK(editor.text() == outline);
    }
}

TEST_CASE("a fold follows its head, and never hides what was seen") {
    ShownEditor editor(outline);
    fold(editor, 2);
    SUBCASE("lines above") {
        editor.goToLine(0);
        editor.press(Qt::Key_Return);
        CHECK(editor.seenLines() == "0 1 2 3 9 10 11 12 13");
    }
    SUBCASE("typing in the head") {
        editor.goToLine(2, 11);
        QTest::keyClicks(&editor, QStringLiteral(" list"));
        CHECK(editor.seenLines() == "0 1 2 8 9 10 11 12");
    }
    SUBCASE("a head that is none any more") {
        editor.goToLine(2, 3);
        editor.press(Qt::Key_Backspace);
        CHECK(editor.seenLines() == "0 1 2 3 4 5 6 7 8 9 10 11 12");
    }
    SUBCASE("a line behind it that would belong to it") {
        editor.goToLine(9, 0);
        QTest::keyClicks(&editor, QStringLiteral("#"));
        CHECK(editor.seenLines() == "0 1 2 3 4 5 6 7 8 9 10 11 12");
    }
    SUBCASE("others change a hidden line") {
        std::string text = editor.text();
        text.replace(text.find("Bread"), 5, "Butter\n\t* [ ] Cheese");
        editor.replaceText(text);
        CHECK(editor.seenLines() == "0 1 2 9 10 11 12 13");
        CHECK(editor.text() == text);
    }
    SUBCASE("undo of a hidden line") {
        fold(editor, 2);
        editor.goToLine(4, 12);
        QTest::keyClicks(&editor, QStringLiteral("!"));
        fold(editor, 2);
        editor.undo();
        CHECK(editor.text() == outline);
        CHECK(editor.textCursor().block().isVisible());
        CHECK(editor.textCursor().blockNumber() == 4);
    }
    SUBCASE("another text") {
        editor.setText("# a\nb\n");
        CHECK(editor.seenLines() == "0 1 2");
    }
}

TEST_CASE("the handle keeps off the signs of the caret's line") {
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        CAPTURE(direction);
        const bool isMirrored = direction == Qt::RightToLeft;
        ShownEditor editor(isMirrored ? "## \u05d0\u05d1\n\u05d2\n" : "## Shopping\nBread\n");
        editor.setFocus();
        REQUIRE(QTest::qWaitForWindowActive(&editor));
        editor.goToLine(0, 4);
        const QRectF handle = editor.layout().handleOf(0);
        const QTextBlock block = editor.document()->firstBlock();
        const QRectF words = block.layout()->lineAt(0).naturalTextRect();
        REQUIRE_FALSE(handle.isEmpty());
        CHECK((isMirrored ? handle.left() >= words.right() : handle.right() <= words.left()));
        editor.resize(200, 400);
        CHECK((editor.layout().handleOf(0).isEmpty() || editor.layout().handleOf(0).left() >= 0));
    }
}

TEST_CASE("handle, mark and keys fold") {
    ShownEditor editor(outline);
    editor.draw();
    editor.click(editor.handleOfLine(2));
    CHECK(editor.seenLines() == "0 1 2 8 9 10 11 12");
    const QRectF mark = editor.layout().foldMarkOf(2);
    REQUIRE_FALSE(mark.isEmpty());
    editor.click(editor.inView(mark.center()));
    CHECK(editor.seenLines() == "0 1 2 3 4 5 6 7 8 9 10 11 12");
    CHECK(editor.layout().foldMarkOf(2).isEmpty());
    editor.folding().toggleAll();
    CHECK(editor.seenLines() == "0 11");
    editor.folding().toggleAll();
    CHECK(editor.seenLines() == "0 1 2 3 4 5 6 7 8 9 10 11 12");

    WindowFixture planner("-- Calendar/20190305.txt\n* [ ] Move\n\t* [ ] Pack\nend\n");
    planner.start();
    planner.focusEditor();
    planner.editor().goToLine(1, 3);
    planner.press("Alt+F");
    CHECK_FALSE(planner.editor().document()->findBlockByNumber(1).isVisible());
    CHECK(planner.editor().textCursor().blockNumber() == 0);
    // What is folded stays so while other notes are open.
    planner.press("Alt+PgDown");
    planner.press("Alt+PgUp");
    CHECK_FALSE(planner.editor().document()->findBlockByNumber(1).isVisible());
    CHECK(planner.shown() == "* [ ] Move\n\t* [ ] Pack\nend\n");
    planner.press("Ctrl+F");
    planner.type("pack");
    planner.press("Return");
    CHECK(planner.editor().document()->findBlockByNumber(1).isVisible());
}
