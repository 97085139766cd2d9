// SPDX-License-Identifier: MIT
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/document_edits.h"
#include "desktop/layout_checks.h"
#include "desktop/note_editor.h"
#include "desktop/note_folding.h"
#include "desktop/note_layout.h"
#include "desktop/qt_text.h"
#include "desktop/shown_editor.h"
#include "desktop/theme.h"
#include "desktop/window_fixture.h"

namespace {

using namespace std::literals;
using namespace tessaly::desktop;
using tessaly::tests::checkStack;
using tessaly::tests::ShownEditor;
using tessaly::tests::WindowFixture;

constexpr std::string_view pieces[] = {
    "# Head\n",
    "## Next **bold**\n",
    "* task #tag >2019-03-07\n",
    "\t* [x] done `code`\n",
    "- [-] cancelled\n",
    "> quoted [title](https://example.org)\n",
    "```\n",
    "~~~\n",
    "---\n",
    "10. numbered\n",
    "\n",
    "words ",
    "a long line that is wrapped where the column is narrow, and on ",
    "\u05E9\u05DC\u05D5\u05DD ",
    "\U0001F469\u200D\U0001F52C",
    "no\u00A0break",
    "a\u2028b",
    "\t",
    "\0"sv,
    "|a|b|\n",
    "|---|:-:|\n",
    "|`c|d`|#tag|\n",
    "![x](photo.png)\n"};

std::string hostileText(std::mt19937& random, std::size_t size) {
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += pieces[random() % std::size(pieces)];
    }
    return text;
}

/// The same text, laid out from the start, is as high block by block.
void checkLikeNew(const ShownEditor& editor) {
    ShownEditor other;
    other.resize(editor.size());
    other.setText(editor.text());
    other.setEditing(NoteEditor::Editing::never);
    for (QTextBlock block = editor.document()->begin(); block.isValid(); block = block.next()) {
        const QTextBlock same = other.document()->findBlockByNumber(block.blockNumber());
        CAPTURE(utf8(block.text()));
        REQUIRE(editor.layout().blockBoundingRect(block).height() ==
                other.layout().blockBoundingRect(same).height());
        REQUIRE(BlockLook::of(block)->line == BlockLook::of(same)->line);
    }
}

void editAtRandom(ShownEditor& editor, std::mt19937& random) {
    const auto upTo = [&](int most) {
        return static_cast<int>(random() % (static_cast<unsigned>(most) + 1U));
    };
    const int last = editor.document()->characterCount() - 1;
    QTextCursor caret = editor.textCursor();
    caret.setPosition(upTo(last));
    switch (random() % 9) {
        case 0:
            caret.setPosition(std::min(last, caret.position() + upTo(40)), QTextCursor::KeepAnchor);
            break;
        case 1: caret.movePosition(QTextCursor::StartOfBlock); break;
        default: break;
    }
    editor.setTextCursor(caret);
    switch (random() % 12) {
        case 0: QTest::keyClick(&editor, Qt::Key_Backspace); break;
        case 1: QTest::keyClick(&editor, Qt::Key_Delete); break;
        case 2: QTest::keyClick(&editor, Qt::Key_Return); break;
        case 3: editor.undo(); break;
        case 4: editor.redo(); break;
        case 5: editor.resize(260 + upTo(500), 200 + upTo(300)); break;
        case 6: QTest::keyClick(&editor, Qt::Key_QuoteLeft); break;
        case 7: editor.folding().toggle(upTo(editor.document()->blockCount() - 1)); break;
        case 8: editor.folding().toggleAll(); break;
        case 9: QTest::keyClick(&editor, Qt::Key_Tab); break;
        case 10: {
            std::string text = editor.text();
            text.insert(0, pieces[random() % std::size(pieces)]);
            editor.replaceText(text);
            break;
        }
        default: {
            QTextCursor at = editor.textCursor();
            at.insertText(documentText(hostileText(random, 3)));
            break;
        }
    }
    if (random() % 3 == 0) {
        editor.verticalScrollBar()->setValue(upTo(editor.verticalScrollBar()->maximum()));
        editor.draw();
    }
}

}  // namespace

TEST_CASE("blocks stack without gaps, whatever is done to the text") {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        CAPTURE(seed);
        std::mt19937 random(seed);
        ShownEditor editor;
        editor.setText(hostileText(random, 60));
        for (int round = 0; round < 6; ++round) {
            for (int i = 0; i < 8; ++i) {
                editAtRandom(editor, random);
                CHECK(editor.textCursor().block().isVisible());
            }
            checkStack(editor);
        }
        editor.layout().changeFolds([](NoteFolds& folds) { return folds.unfoldAll(); });
        editor.layout().tellSize();
        checkLikeNew(editor);
    }
}

TEST_CASE("what is drawn enters neither text nor undo") {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        CAPTURE(seed);
        std::mt19937 random(seed);
        const std::string text = hostileText(random, 40);
        ShownEditor editor;
        editor.setText(text);
        QSignalSpy changed(editor.document(), &QTextDocument::contentsChange);
        editor.draw();
        for (int line = 0; line < editor.document()->blockCount(); ++line) {
            editor.goToLine(line);
            editor.draw();
        }
        Theme::Look dark;
        dark.scheme = Theme::Scheme::dark;
        Theme::instance().apply(dark);
        editor.draw();
        Theme::instance().apply({});
        CHECK(changed.isEmpty());
        CHECK_FALSE(editor.canUndo());
        CHECK(editor.text() == text);
        for (int i = 0; i < 30; ++i) {
            editor.goToLine(static_cast<int>(random() % 30), static_cast<int>(random() % 9));
            QTest::keyClicks(&editor, QStringLiteral("x #y"));
            QTest::keyClick(&editor, i % 3 == 0 ? Qt::Key_Return : Qt::Key_Backspace);
        }
        CHECK(editor.text() != text);
        while (editor.canUndo()) {
            editor.undo();
        }
        CHECK(editor.text() == text);
    }
}

TEST_CASE("a key tells of its own place, after all was laid out") {
    ShownEditor editor;
    std::string text;
    for (int i = 0; i < 200; ++i) {
        text += "* task #tag **bold**\n";
    }
    editor.setText(text);
    editor.verticalScrollBar()->setValue(editor.verticalScrollBar()->maximum());
    editor.draw();
    editor.goToLine(3);
    editor.draw();
    QSignalSpy changed(editor.document(), &QTextDocument::contentsChange);
    QTest::keyClicks(&editor, QStringLiteral("x"));
    REQUIRE(changed.size() == 1);
    CHECK(changed.front().at(0).toInt() == editor.document()->findBlockByNumber(3).position());
    CHECK(changed.front().at(2).toInt() == 1);
}

TEST_CASE("a fence that opens or closes changes the lines behind it") {
    using Kind = tessaly::app::LineLook::Kind;
    ShownEditor editor;
    editor.setText("a\n* one\n```\n* two\n");
    const auto kind = [&](int line) {
        editor.draw();
        return BlockLook::of(editor.document()->findBlockByNumber(line))->line.kind;
    };
    CHECK(kind(1) == Kind::task);
    CHECK(kind(3) == Kind::code);
    editor.goToLine(0);
    QTest::keyClicks(&editor, QStringLiteral("```"));
    CHECK(kind(1) == Kind::code);
    CHECK(kind(3) == Kind::task);
    editor.undo();
    CHECK(kind(1) == Kind::task);
    CHECK(kind(3) == Kind::code);
}

TEST_CASE("what is seen stays where it is when lines above are measured or changed") {
    ShownEditor editor;
    std::string text;
    for (int i = 0; i < 400; ++i) {
        text += i % 3 == 0 ? "# " + std::to_string(i) + "\n" : std::to_string(i) + "\n";
    }
    editor.setText(text);
    editor.goToLine(300);
    editor.draw();
    const auto top = [&](int line) {
        const QTextBlock block = editor.document()->findBlockByNumber(line);
        return std::lround(editor.layout().blockBoundingRect(block).top()) -
               editor.verticalScrollBar()->value();
    };
    for (int step = 0; step < 20; ++step) {
        const int line = editor.cursorForPosition({0, 5}).blockNumber() + 2;
        const auto seen = top(line);
        editor.verticalScrollBar()->setValue(editor.verticalScrollBar()->value() - 60);
        CHECK(std::abs(top(line) - seen - 60) <= 1);
    }
    const int line = editor.cursorForPosition({0, 5}).blockNumber();
    const auto seen = top(line + 1);
    editor.replaceText("# new\nmore\n" + text);
    CHECK(std::abs(top(line + 3) - seen) <= 1);
}

TEST_CASE("a click on a box is one step, and leaves the caret where it is") {
    struct Row {
        std::string_view line;
        std::string_view after;
    };
    const Row rows[] = {
        {"* call", "* [x] call @done(2019-03-05"},
        {"* [ ] call", "* [x] call @done(2019-03-05"},
        {"- [ ] milk", "- [x] milk @done(2019-03-05"},
        {"* [x] call @done(2019-03-01 10:00)", "* call"},
        {"\t* [-] call", "\t* call"},
        {"* [>] call >2019-03-07", "* [x] call >2019-03-07 @done(2019-03-05"},
    };
    std::string note = "first\n";
    for (const Row& row : rows) {
        note += std::string(row.line) + "\n";
    }
    WindowFixture user("-- Calendar/20190305.txt\n" + note);
    user.start();
    NoteEditor& editor = user.editor();
    const std::string before = editor.text();
    const auto& layout = static_cast<NoteLayout&>(*editor.document()->documentLayout());
    for (int line = 1; line <= static_cast<int>(std::size(rows)); ++line) {
        const Row& row = rows[line - 1];
        CAPTURE(row.line);
        editor.goToLine(0, 2);
        const QPointF box =
            layout.boxOf(line).center() - QPointF(0, editor.verticalScrollBar()->value());
        QTest::mouseClick(editor.viewport(), Qt::LeftButton, {}, box.toPoint());
        CHECK(editor.lineText(line).substr(0, row.after.size()) == row.after);
        CHECK(editor.textCursor().position() == 2);
        editor.undo();
        CHECK(editor.text() == before);
    }
}

TEST_CASE("a box is where the pointer finds it, and nowhere while its markup is shown") {
    ShownEditor editor;
    editor.setText("* one\n\t* [x] two\n* \u05E9\u05DC\u05D5\u05DD\n- none\n");
    QSignalSpy clicked(&editor, &NoteTextView::boxClicked);
    editor.draw();
    for (const int line : {0, 1, 2}) {
        editor.clickBox(line);
    }
    REQUIRE(clicked.size() == 3);
    CHECK(clicked[1].front().toInt() == 1);
    CHECK(clicked[2].front().toInt() == 2);
    editor.activateWindow();
    editor.setFocus();
    REQUIRE(QTest::qWaitForWindowActive(&editor));
    const QPoint box = editor.boxOfLine(1);
    editor.goToLine(1);
    QTest::mouseClick(editor.viewport(), Qt::LeftButton, {}, box);
    CHECK(clicked.size() == 3);
}

TEST_CASE("the caret's line shows its markup, and its words begin where they did") {
    ShownEditor editor;
    editor.setText("words\n# Head\n* [ ] task\n> quote\n\t- item\n1. one\n");
    editor.activateWindow();
    editor.setFocus();
    REQUIRE(QTest::qWaitForWindowActive(&editor));
    const auto startOfWords = [&](int line) {
        const QTextBlock block = editor.document()->findBlockByNumber(line);
        editor.draw();
        return block.layout()->lineAt(0).cursorToX(BlockLook::of(block)->shape.prefix);
    };
    const auto markupWidth = [&](int line) {
        const QTextBlock block = editor.document()->findBlockByNumber(line);
        return startOfWords(line) - block.layout()->lineAt(0).cursorToX(0);
    };
    for (int line = 1; line <= 5; ++line) {
        CAPTURE(line);
        editor.goToLine(0);
        const qreal quiet = startOfWords(line);
        const bool isHidden = line < 4;
        CHECK((markupWidth(line) < 1) == isHidden);
        editor.goToLine(line);
        CHECK(startOfWords(line) == doctest::Approx(quiet).epsilon(0.01));
        CHECK(markupWidth(line) > 5);
    }
    editor.clearFocus();
    CHECK(markupWidth(1) < 1);
}

TEST_CASE("a text that is seen from its beginning stays so") {
    std::string text = "# Head\n";
    for (int line = 0; line < 100; ++line) {
        text += "words\n";
    }
    ShownEditor editor(text);
    editor.draw();
    // As when the caret comes into the line, which has not been painted yet.
    editor.layout().setShownMarkup(0);
    editor.resize(500, 300);
    editor.draw();
    CHECK(editor.verticalScrollBar()->value() == 0);
}

TEST_CASE("words that an input method has not finished stand in the line, and not in the text") {
    ShownEditor editor;
    editor.setText("* **bold** #tag\n");
    editor.goToLine(0, 5);
    QInputMethodEvent unfinished(QStringLiteral("xyz"), {});
    QCoreApplication::sendEvent(&editor, &unfinished);
    editor.draw();
    CHECK(editor.text() == "* **bold** #tag\n");
    const QTextLayout& line = *editor.document()->firstBlock().layout();
    REQUIRE(line.lineCount() == 1);
    CHECK(line.lineAt(0).textLength() == 15 + 3);
    const auto formats = line.formats();
    // The tag's colour has moved with it, behind the words.
    CHECK(std::any_of(formats.begin(), formats.end(), [](const auto& range) {
        return range.start == 11 + 3 && range.length == 4;
    }));
    QInputMethodEvent finished;
    finished.setCommitString(QStringLiteral("xyz"));
    QCoreApplication::sendEvent(&editor, &finished);
    CHECK(editor.text() == "* **bxyzold** #tag\n");
    editor.undo();
    CHECK(editor.text() == "* **bold** #tag\n");
}

TEST_CASE("a box stands beside its words, also where these have no place to be broken at") {
    const std::string word(300, 'w');
    for (const std::string& line :
         {"* [ ] " + word, "- " + word, "> " + word, "* " + word + " end"}) {
        CAPTURE(line);
        ShownEditor editor("first\n" + line);
        editor.draw();
        const QTextLayout& text = *editor.document()->lastBlock().layout();
        REQUIRE(text.lineCount() > 1);
        CHECK(text.lineAt(0).textLength() > 20);
    }
}
