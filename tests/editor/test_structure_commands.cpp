// SPDX-License-Identifier: MIT
#include <algorithm>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "base/utf8.h"
#include "editor/editor_commands.h"
#include "editor/move_lines.h"
#include "marked_text.h"
#include "support/log_capture.h"

using namespace tessaly;
using namespace tessaly::editor;

namespace {

struct Row {
    const char* before;
    const char* after;  ///< null: nothing
};

using Command = std::function<std::optional<Edit>(std::string_view, base::TextRange)>;

Command moving(Direction direction) {
    return [=](std::string_view text, base::TextRange selection) {
        return moveLines(text, selection, direction);
    };
}

Command indenting(Indentation indentation) {
    return [=](std::string_view text, base::TextRange selection) {
        return indent(text, selection, indentation);
    };
}

void check(const Command& command, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        CAPTURE(row.before);
        const auto before = tests::readMarked(row.before);
        const auto edit = command(before.text, before.selection);
        REQUIRE(edit.has_value() == (row.after != nullptr));
        if (edit) {
            CHECK(tests::writtenMarked(edited(before.text, *edit), edit->selection) == row.after);
        }
    }
}

std::string randomText(std::mt19937& random) {
    static const std::vector<std::string> pieces{"a", "* ", "\t", " ",   "\n",      "\r\n", "[x] ",
                                                 "é", "😀",  "\n", "1. ", "e\u0301", "\xFF"};
    std::string text;
    for (std::size_t left = random() % 12; left > 0; --left) {
        text += pieces[random() % pieces.size()];
    }
    return text;
}

base::TextRange randomSelection(std::mt19937& random, const std::string& text) {
    const auto unit = [&] {
        const std::size_t any = random() % (base::utf16Length(text) + 1);
        return base::utf16Length(text.substr(0, base::byteOffset(text, any)));
    };
    const auto [start, end] = std::minmax({unit(), unit()});
    return {start, end - start};
}

bool isBetweenCharacters(std::string_view text, std::size_t unit) {
    return base::utf16Length(text.substr(0, base::byteOffset(text, unit))) == unit;
}

/// The text after both, one on what the other left; nothing if there is nothing to do at first.
std::optional<std::string> afterBoth(const Command& first, const Command& second,
                                     const std::string& text, base::TextRange selection) {
    const auto edit = first(text, selection);
    if (!edit) {
        return std::nullopt;
    }
    const std::string between = edited(text, *edit);
    CAPTURE(between);
    REQUIRE(isBetweenCharacters(between, edit->selection.location));
    REQUIRE(isBetweenCharacters(between, edit->selection.end()));
    const auto back = second(between, edit->selection);
    REQUIRE(back);
    return edited(between, *back);
}

}  // namespace

TEST_CASE("lines change places, and their breaks do not") {
    check(moving(Direction::up), {
                                     {"a\n|b\nc", "|b\na\nc"},
                                     {"a\nb{b\nc}c\nd\n", "b{b\nc}c\na\nd\n"},
                                     {"a\n{b\n}c", "{b\n}a\nc"},
                                     {"a\r\n😀é|", "😀é|\r\na"},
                                     {"a\r\nb|\r", "b|\r\na\r"},
                                     {"\n|b", "|b\n"},
                                     {"|a\nb", nullptr},
                                     {"a\n|", nullptr},
                                     {"|", nullptr},
                                 });
    check(moving(Direction::down), {
                                       {"a|\nb\nc", "b\na|\nc"},
                                       {"{a\nb\n}c", "c\n{a\nb}"},
                                       {"{a\r\n}b\r\n", "b\r\n{a\r\n}"},
                                       {"|\na\n", "a\n|\n"},
                                       {"a\n|b\n", nullptr},
                                       {"a\n{b}", nullptr},
                                   });
}

TEST_CASE("Enter goes on with the list, or ends it") {
    check(continueList, {
                            {"* [x] Done|", "* [x] Done\n* [ ] |"},
                            {"* [x] Do|ne\nb", "* [x] Do\n* [ ] |ne\nb"},
                            {"\t9. a|", "\t9. a\n\t10. |"},
                            {"a\n 199) [>] b|\r\nc", "a\n 199) [>] b\r\n 200) [ ] |\r\nc"},
                            {"a\r\n- b|", "a\r\n- b\r\n- |"},
                            {"\t> a|", "\t> a\n\t> |"},
                            {"- |a", "- \n- |a"},
                            {"- a{b\nc}d", "- a\n- |d"},
                            {"- a{\r}\n", "- a\r\n- |\r\n"},
                            {"a\n\t* [ ] |\r\nb", "a\n\t|\r\nb"},
                            {"12. | ", "|"},
                            {"> |\n", "|\n"},
                            {"- {\na}b", "- \n- |b"},
                            {"* [|x] a", nullptr},
                            {"|- a", nullptr},
                            {"# a|", nullptr},
                            {"a|", nullptr},
                            {"|", nullptr},
                        });
}

TEST_CASE("list items and several lines are indented") {
    check(indenting(Indentation::more), {
                                            {"|* a", "\t|* a"},
                                            {"1. {a}\r\nb", "\t1. {a}\r\nb"},
                                            {"{a\n \nb\n}c", "\t{a\n \n\tb\n}c"},
                                            {"a|", nullptr},
                                            {"{a}", nullptr},
                                            {"{\n \n}", nullptr},
                                        });
    check(indenting(Indentation::less), {
                                            {"\t\t* a|", "\t* a|"},
                                            {"|  - a", "| - a"},
                                            {"{\ta\n\n b\nc}", "{a\n\nb\nc}"},
                                            {"\u00A0* a|", "* a|"},
                                            {"* a|", nullptr},
                                            {"\ta|", nullptr},
                                        });
}

TEST_CASE("the word under the cursor ends at white space and delimiters") {
    const tests::LogCapture log;
    for (const auto& [text, word] : std::vector<std::pair<const char*, const char*>>{
             {"see wo|rd now", "see {word} now"},
             {"see |word", "see {word}"},
             {"word| now", "{word} now"},
             {"@na|me", "@{name}"},
             {"a，b😀|é;c", "a，{b😀é};c"},
             {"[a-b_c|](d)", "[{a-b_c}](d)"},
             {"\u00A0a|\r\nb", "\u00A0{a}\r\nb"},
         }) {
        const std::string marked = text;
        CAPTURE(marked);
        const auto shown = tests::readMarked(marked);
        const auto found = selectedWord(shown.text, shown.selection.location);
        REQUIRE(found);
        CHECK(tests::writtenMarked(shown.text, *found) == word);
    }
    CHECK(log.lines().empty());
    CHECK(!selectedWord("a , b", 3));
    CHECK(log.lines() ==
          std::vector<std::string>{"Could not detect selected word in 'selectedWord'"});
}

TEST_CASE("random texts: moving lines up and down, or in and out, gives the text back") {
    std::mt19937 random(20190521);
    for (int i = 0; i < 20'000; ++i) {
        const std::string text = randomText(random);
        const base::TextRange selection = randomSelection(random, text);
        CAPTURE(tests::writtenMarked(text, selection));
        const auto shifted =
            afterBoth(indenting(Indentation::more), indenting(Indentation::less), text, selection);
        REQUIRE(shifted.value_or(text) == text);
        if (text.ends_with('\n')) {  // else an empty line behind all others would be none
            const Command up = moving(Direction::up);
            const Command down = moving(Direction::down);
            REQUIRE(afterBoth(up, down, text, selection).value_or(text) == text);
            REQUIRE(afterBoth(down, up, text, selection).value_or(text) == text);
        }
    }
}

TEST_CASE("random texts: Enter puts in a line and loses nothing but what is selected") {
    std::mt19937 random(3);
    for (int i = 0; i < 20'000; ++i) {
        const std::string text = randomText(random);
        const base::TextRange selection = randomSelection(random, text);
        CAPTURE(tests::writtenMarked(text, selection));
        const auto edit = continueList(text, selection);
        if (!edit || edit->replacement.empty()) {
            continue;
        }
        // No line break is taken apart.
        const std::size_t start = edit->range.location;
        REQUIRE((start == selection.location || start + 1 == selection.location));
        REQUIRE(edit->range.end() <= selection.end());
        REQUIRE(std::ranges::count(edit->replacement, '\n') == 1);
        REQUIRE(edit->selection ==
                base::TextRange{start + base::utf16Length(edit->replacement), 0});
    }
}
