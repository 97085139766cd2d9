// SPDX-License-Identifier: MIT
#include <QAction>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/document_edits.h"
#include "desktop/find_bar.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"

namespace {

using namespace std::literals;
using namespace tessaly::desktop;
using tessaly::base::TextRange;

/// As the clipboard and drags give and take it.
class OpenEditor : public NoteEditor {
public:
    using NoteEditor::createMimeDataFromSelection;
    void insert(const QString& text) {
        QMimeData given;
        given.setText(text);
        insertFromMimeData(&given);
    }
    void select(int start, int end) {
        setTextCursor(cursorAt(
            *document(), {static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)}));
    }
    /// With "|" where the caret is, or both ends of the selection.
    std::string marked() const {
        QString text = documentText(this->text());
        const QTextCursor caret = textCursor();
        text.insert(caret.selectionEnd(), u'|');
        if (caret.hasSelection()) {
            text.insert(caret.selectionStart(), u'|');
        }
        return utf8(text);
    }
    /// The notation of `marked`.
    void setMarked(std::string_view marked) {
        QString text = documentText(marked);
        const auto start = static_cast<int>(text.indexOf(u'|'));
        text.remove(start, 1);
        auto end = static_cast<int>(text.indexOf(u'|'));
        if (end < 0) {
            end = start;
        } else {
            text.remove(end, 1);
        }
        setText(utf8(text));
        select(start, end);
    }
};

struct Press {
    int key;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

struct KeyRow {
    std::string_view before;
    std::vector<Press> keys;
    std::string_view after;
};

/// What the keys make is taken back by as many undo steps as there were keys, or fewer.
void checkKeys(const KeyRow& row) {
    CAPTURE(row.before);
    OpenEditor editor;
    editor.setMarked(row.before);
    const std::string before = editor.text();
    for (const Press& press : row.keys) {
        QTest::keyClick(&editor, static_cast<Qt::Key>(press.key), press.modifiers);
    }
    CHECK(editor.marked() == row.after);
    for (std::size_t step = 0; step < row.keys.size(); ++step) {
        editor.undo();
    }
    CHECK(editor.text() == before);
}

struct MergeRow {
    std::string_view before;
    std::string shown;
    std::string_view after;
};

void checkMerge(const MergeRow& row) {
    CAPTURE(row.before);
    OpenEditor editor;
    editor.setMarked(row.before);
    QSignalSpy edits(&editor, &NoteEditor::edited);
    editor.replaceText(row.shown);
    CHECK(editor.marked() == row.after);
    CHECK_FALSE(editor.canUndo());
    editor.undo();
    CHECK(editor.marked() == row.after);
    CHECK(edits.isEmpty());
}

std::vector<std::string> undone(OpenEditor& editor) {
    std::vector<std::string> texts;
    while (editor.canUndo()) {
        editor.undo();
        texts.push_back(editor.text());
    }
    return texts;
}

}  // namespace

TEST_CASE("an editor holds every character that a note can have") {
    const std::string_view texts[] = {"",
                                      "a",
                                      "a\n",
                                      "\n\n",
                                      "no\u00A0break",
                                      "a\u2028b",
                                      "\uFEFFa",
                                      "a\uFEFF",
                                      "a\0b"sv,
                                      "\U0001F469\u200D\U0001F52C",
                                      "\u05D0\u05D1 c",
                                      "\f\v\u0085\uFFFC\t "};
    for (const std::string_view text : texts) {
        CAPTURE(text);
        OpenEditor editor;
        editor.setText(std::string(text));
        CHECK(editor.text() == text);
        editor.selectAll();
        const std::unique_ptr<QMimeData> copied(editor.createMimeDataFromSelection());
        OpenEditor other;
        other.insert(copied->text());
        CHECK(other.text() == text);
    }
}

TEST_CASE("what is pasted is plain text, whatever its line ends are") {
    OpenEditor editor;
    editor.setMarked("x|y|z");
    editor.insert(QStringLiteral("a\r\nb\rc\u2029d\u00A0e"));
    CHECK(editor.marked() == "xa\nb\nc\nd\u00A0e|z");
    editor.undo();
    CHECK(editor.text() == "xyz");
}

TEST_CASE("keys that write, each gesture one step back") {
    const Press enter{Qt::Key_Return};
    const Press bare{Qt::Key_Return, Qt::ShiftModifier};
    const Press tab{Qt::Key_Tab};
    const Press back{Qt::Key_Backtab, Qt::ShiftModifier};
    const KeyRow rows[] = {
        {"a|b", {enter}, "a\n|b"},
        {"* [x] a|", {enter}, "* [x] a\n* [ ] |"},
        {"9. a|\nz", {enter}, "9. a\n10. |\nz"},
        {"z\n* a|", {bare}, "z\n* a\n|"},
        {"* a\n* |\nz", {enter}, "* a\n|\nz"},
        {"z\n* a|", {tab}, "z\n\t* a|"},
        {"z\n\t* a|", {back}, "z\n* a|"},
        {"te|xt", {tab}, "te\t|xt"},
        {"text|", {back}, "text|"},
        {"|a\nb|", {tab}, "\t|a\n\tb|"},
        {"ab|", {{Qt::Key_Backspace}}, "a|"},
        {"\t|", {{Qt::Key_Backspace}, {Qt::Key_Backspace}}, "|"},
        {"* [ ] |", {{Qt::Key_Backspace}}, "* [ ]|"},
        {"a|bc|d", {{Qt::Key_Delete}}, "a|d"},
        {"a\n|b", {{Qt::Key_Backspace}}, "a|b"},
    };
    for (const KeyRow& row : rows) {
        checkKeys(row);
    }
}

TEST_CASE("typing is taken back by words, and up to a pause") {
    OpenEditor editor;
    editor.setText("");
    QTest::keyClicks(&editor, QStringLiteral("one two"));
    CHECK(undone(editor) == std::vector<std::string>{"one ", ""});
    QTest::keyClicks(&editor, QStringLiteral("ab"));
    QTest::qWait(1050);
    QTest::keyClicks(&editor, QStringLiteral("cd"));
    QTest::keyClick(&editor, Qt::Key_Backspace);
    QTest::keyClick(&editor, Qt::Key_Backspace);
    QTest::keyClicks(&editor, QStringLiteral("e"));
    CHECK(editor.text() == "abe");
    CHECK(undone(editor) == std::vector<std::string>{"ab", "abcd", "ab", ""});
    QTest::keyClicks(&editor, QStringLiteral("ab"));
    QTest::keyClick(&editor, Qt::Key_Left);
    QTest::keyClicks(&editor, QStringLiteral("x"));
    CHECK(undone(editor) == std::vector<std::string>{"ab", ""});
}

TEST_CASE("what others wrote comes in around the caret, and undo leaves it") {
    const MergeRow rows[] = {
        {"a|b\nc", "ab\nc", "a|b\nc"},
        {"a\nb|c\nd", "new\na\nbc\nd", "new\na\nb|c\nd"},
        {"a\n|b", "a\nnew\nb", "a\nnew\n|b"},
        {"a|", "a\nb\n", "a|\nb\n"},
        {"a\n|", "a\nb\n", "a\nb\n|"},
        {"a\nb|", "a", "a|"},
        {"* call Bo|b today", "* [x] call Bob today @done(2019-03-05)",
         "* [x] call Bo|b today @done(2019-03-05)"},
        {"one |two| three\nfour", "1 two 3\n4", "1 |two| 3\n4"},
        {"a \U0001F600|", "a \U0001F601", "a \U0001F601|"},
        {"a\nb\nc|", "", "|"},
    };
    for (const MergeRow& row : rows) {
        checkMerge(row);
    }
}

TEST_CASE("a key that a command of the window has is not the editor's") {
    QWidget window;
    auto* editor = new OpenEditor;
    editor->setParent(&window);
    QAction action;
    action.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_K));
    window.addAction(&action);
    QSignalSpy triggered(&action, &QAction::triggered);
    window.show();
    editor->setFocus();
    REQUIRE(QTest::qWaitForWindowActive(&window));
    editor->setMarked("a|b");
    QTest::keyClick(editor, Qt::Key_K, Qt::ControlModifier);
    CHECK(triggered.size() == 1);
    CHECK(editor->text() == "ab");
    QTest::keyClicks(editor, QStringLiteral("x"));
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    CHECK(editor->text() == "ab");
}

TEST_CASE("marks and rewritten lines are one step, and keep the caret") {
    OpenEditor editor;
    editor.setMarked("a\n|b\nc|\nd");
    CHECK(editor.mark(tessaly::editor::MarkAction::quote));
    CHECK(editor.text() == "a\n> b\n> c\nd");
    editor.undo();
    CHECK(editor.text() == "a\nb\nc\nd");
    editor.setMarked("* one |two\n* three|\n* four");
    CHECK(editor.rewriteLines([](const std::string& line) { return line + "!"; }) == 2);
    CHECK(editor.marked() == "* one |two!\n* three|!\n* four");
    editor.undo();
    CHECK(editor.text() == "* one two\n* three\n* four");
}

TEST_CASE("a text with a line that would hold the program up is shown, and stays as it is") {
    std::string text = "head\n" + std::string(NoteEditor::longestLine + 1, 'x') + "\ntail";
    OpenEditor editor;
    editor.setText(text);
    CHECK(editor.isInPieces());
    QTest::keyClicks(&editor, QStringLiteral("y"));
    editor.insert(QStringLiteral("z"));
    CHECK_FALSE(editor.mark(tessaly::editor::MarkAction::quote));
    CHECK(editor.text() == text);
    editor.setText("short");
    QTest::keyClicks(&editor, QStringLiteral("y"));
    CHECK(editor.text() == "yshort");
    editor.insert(qt(text));
    CHECK(editor.text() == "yshort");
}

TEST_CASE("occurrences") {
    struct Row {
        std::string_view text;
        TextSearch search;
        std::vector<TextRange> expected;
    };
    const Row rows[] = {
        {"aAa", {QStringLiteral("a"), false, false}, {{0, 1}, {1, 1}, {2, 1}}},
        {"aAa", {QStringLiteral("a"), true, false}, {{0, 1}, {2, 1}}},
        {"aaaa", {QStringLiteral("aa"), true, false}, {{0, 2}, {2, 2}}},
        {"cat concat cat_ \u00E9cat cat", {QStringLiteral("cat"), true, true}, {{0, 3}, {21, 3}}},
        {"#tag #tags", {QStringLiteral("#tag"), true, true}, {{0, 4}}},
        {"\u00C4\U0001F600b\nB", {QStringLiteral("b\nb"), false, false}, {{3, 3}}},
        {"a", {QString(), false, false}, {}},
    };
    for (const Row& row : rows) {
        CAPTURE(row.text);
        CHECK(occurrences(documentText(row.text), row.search) == row.expected);
    }
}

TEST_CASE("finding goes round, replacing is one step") {
    OpenEditor editor;
    FindBar bar;
    bar.setEditor(&editor);
    editor.setMarked("|cat|\na Cat\ncat");
    bar.open(FindBar::Fields::findAndReplace);
    bar.findNext();
    CHECK(editor.marked() == "cat\na |Cat|\ncat");
    bar.findPrevious();
    bar.findPrevious();
    CHECK(editor.marked() == "cat\na Cat\n|cat|");
    const auto fields = bar.findChildren<QLineEdit*>();
    REQUIRE(fields.size() == 2);
    fields.back()->setText(QStringLiteral("catcat"));
    bar.replaceOne();
    CHECK(editor.marked() == "|cat|\na Cat\ncatcat");
    bar.replaceAll();
    CHECK(editor.text() == "catcat\na catcat\ncatcatcatcat");
    editor.undo();
    CHECK(editor.text() == "cat\na Cat\ncatcat");
}
