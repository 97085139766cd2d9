// SPDX-License-Identifier: MIT
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/table_columns.h"
#include "desktop/note_editor.h"
#include "desktop/note_layout.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace {

using namespace std::literals;
using namespace tessaly::desktop;

struct TableEditor : NoteEditor {
    explicit TableEditor(std::string_view text, int width = 900) {
        setLook({Theme::instance().editorFont("System", 15), 720, {}});
        resize(width, 500);
        setText(std::string(text));
        show();
        activateWindow();
        setFocus();
        REQUIRE(QTest::qWaitForWindowActive(this));
    }
    QTextBlock block(int line) const { return document()->findBlockByNumber(line); }
    /// Of the signs of a row, from the left of the text, in whole pixels.
    std::vector<int> signs(int line) const {
        (void)document()->documentLayout()->blockBoundingRect(block(line));
        const QTextLayout& text = *block(line).layout();
        std::vector<int> places;
        for (const std::size_t sign : tessaly::app::cellSigns(utf8(block(line).text()))) {
            const QTextLine all = text.lineAt(0);
            places.push_back(static_cast<int>(std::lround(all.cursorToX(static_cast<int>(sign)))));
        }
        return places;
    }
    void checkAligned(std::initializer_list<int> lines) const {
        const auto first = signs(*lines.begin());
        REQUIRE(first.size() > 1);
        for (const int line : lines) {
            CAPTURE(utf8(block(line).text()));
            const auto places = signs(line);
            REQUIRE(places.size() == first.size());
            for (std::size_t i = 0; i < places.size(); ++i) {
                CHECK(std::abs(places[i] - first[i]) <= 1);
            }
            CHECK(block(line).layout()->lineCount() == 1);
        }
    }
    qreal height(int line) const {
        return document()->documentLayout()->blockBoundingRect(block(line)).height();
    }
};

constexpr std::string_view table =
    "|Name|What|Cost|\n"
    "|---|:-:|--:|\n"
    "|a|**bold** words and more of them|1|\n"
    "| \xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e | `x|y` | 12000 |\n"
    "||#tag \xf0\x9f\x8c\xb1|\\||\n"
    "|e\xcc\x81\xcc\x81|[title](https://example.org)|x|\n"
    "\n"
    "words\n"sv;

}  // namespace

TEST_CASE("the columns of a table stand below each other") {
    TableEditor editor(table);
    editor.goToLine(7);
    editor.checkAligned({0, 2, 3, 4, 5});
    // The row that parts the head is a line, and the caret's row as text again.
    CHECK(editor.height(1) < editor.height(0));
    editor.goToLine(1);
    CHECK(editor.height(1) == editor.height(0));
    CHECK(editor.text() == table);
    CHECK_FALSE(editor.canUndo());
}

TEST_CASE("cells stand where the row below the head says") {
    TableEditor editor(table);
    editor.goToLine(7);
    const auto signs = editor.signs(3);
    const QTextLine row = editor.block(3).layout()->lineAt(0);
    const QString text = editor.block(3).text();
    const auto roomOf = [&](const QString& word, std::size_t cell) {
        const auto start = text.indexOf(word);
        const qreal before = row.cursorToX(static_cast<int>(start)) - signs[cell];
        const qreal behind = signs[cell + 1] - row.cursorToX(static_cast<int>(start + word.size()));
        return std::pair(before, behind);
    };
    const auto name = roomOf(QStringLiteral("\u65E5\u672C\u8A9E"), 0);
    CHECK(name.first < 30);
    const auto what = roomOf(QStringLiteral("x|y"), 1);
    CHECK(std::abs(what.first - what.second) < 25);
    const auto cost = roomOf(QStringLiteral("12000"), 2);
    CHECK(cost.second < 15);
}

TEST_CASE("typing in a row moves the others, the caret alone does not") {
    TableEditor editor(table);
    editor.goToLine(7);
    const auto before = editor.signs(0);
    editor.goToLine(2);
    CHECK(editor.signs(0) == before);
    editor.goToLine(5, 3);
    CHECK(editor.signs(0) == before);
    QTest::keyClicks(&editor, QStringLiteral("a longer name"));
    CHECK(editor.signs(0)[1] > before[1] + 40);
    editor.checkAligned({0, 2, 3, 4});
    while (editor.canUndo()) {
        editor.undo();
    }
    CHECK(editor.signs(0) == before);
    // A row that stops being one parts the table.
    editor.goToLine(3);
    QTest::keyClicks(&editor, QStringLiteral("x"));
    editor.goToLine(7);
    editor.checkAligned({0, 2});
    editor.checkAligned({4, 5});
    CHECK(editor.signs(4) != before);
    editor.undo();
    editor.checkAligned({0, 2, 3, 4, 5});
}

TEST_CASE("what does not fit the column is wrapped as any text") {
    TableEditor editor(table, 340);
    editor.goToLine(7);
    CHECK(editor.signs(0) != editor.signs(4));
    editor.resize(900, 500);
    editor.checkAligned({0, 2, 3, 4, 5});
    // So are very long tables, and those of scripts that run the other way.
    std::string longTable;
    for (int i = 0; i < 501; ++i) {
        longTable += i % 2 == 0 ? "|a|b|\n" : "|longer|b|\n";
    }
    editor.setText(longTable);
    CHECK(editor.signs(0) != editor.signs(1));
    editor.setText(longTable.substr(0, 40));
    CHECK(editor.signs(0) == editor.signs(1));
    editor.setText("|a|b|\n|\u05E9\u05DC\u05D5\u05DD|b|\n|longer|b|\n");
    CHECK(editor.signs(0) != editor.signs(2));
    editor.setText("```\n|a|b|\n|longer|b|\n```\n");
    CHECK(editor.signs(1) != editor.signs(2));
}
