// SPDX-License-Identifier: MIT
#include <array>
#include <random>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "app/shown_text.h"

namespace {

using tessaly::app::noteLineOf;
using tessaly::app::noteTextOf;
using tessaly::app::shownLineOf;
using tessaly::app::shownText;
using namespace std::literals;

struct Edited {
    std::string_view note;
    std::string_view shown;
    std::string_view expected;
};

void check(const Edited& row) {
    CAPTURE(row.note);
    CAPTURE(row.shown);
    const std::string text = noteTextOf(row.note, row.shown);
    CHECK(text == row.expected);
    CHECK(shownText(text) == row.shown);
}

/// A text of pieces that are line ends, parts of such, or look like them.
std::string randomText(std::mt19937& random, std::size_t pieces) {
    static constexpr std::array<std::string_view, 12> choices{"a",
                                                              "b",
                                                              "\n",
                                                              "\r",
                                                              "\r\n",
                                                              "\u2029",
                                                              "",
                                                              "\xEF\xB7\x90",
                                                              "\xEF\xB7\x91",
                                                              "\u2028",
                                                              "\u2030\uFDD2",
                                                              "\u00A0"};
    std::string text;
    for (std::size_t i = 0; i < pieces; ++i) {
        text += choices[random() % choices.size()];
    }
    return text;
}

}  // namespace

TEST_CASE("every separator of a document is a line end, and nothing else is") {
    CHECK(shownText("a\r\nb\rc\nd\u2029e\xEF\xB7\x90"
                    "f\xEF\xB7\x91g"sv) == "a\nb\nc\nd\ne\nf\ng");
    CHECK(shownText("\r\r\n\n\r"sv) == "\n\n\n\n");
    const std::string_view kept = "a\u2028b\u00A0c\vd\fe\u0085f\0g\uFEFFh\uFFFC\t"sv;
    CHECK(shownText(kept) == kept);
    CHECK(noteTextOf(kept, kept) == kept);
}

TEST_CASE("an edit leaves the ends of other lines alone") {
    const Edited rows[] = {
        {"", "a\nb", "a\nb"},
        {"a\nb", "a\nc\n", "a\nc\n"},
        // A new line is as the one before it, or as the others.
        {"a\r\nb\r\n", "a\nnew\nb\n", "a\r\nnew\r\nb\r\n"},
        {"a\r\nb\r\n", "new\na\nb\n", "new\r\na\r\nb\r\n"},
        {"a\r\nb", "a\nb\nnew\n", "a\r\nb\r\nnew\r\n"},
        {"a\nb\r\nc\nd", "a\nb\nnew\nc\nd", "a\nb\r\nnew\r\nc\nd"},
        {"a\rb\rc", "a\nb\nnew\nc", "a\rb\rnew\rc"},
        // Text alone changes.
        {"a\r\nb\nc\r\n", "a\nB\nc\n", "a\r\nB\nc\r\n"},
        {"a\nb\u2029c\n", "a\nB\nc\n", "a\nB\u2029c\n"},
        // A line is split, joined, deleted, moved.
        {"a\r\nbb\nc\r\n", "a\nb\nb\nc\n", "a\r\nb\nb\nc\r\n"},
        {"a\r\nb\nc\r\n", "ab\nc\n", "ab\r\nc\r\n"},
        {"a\r\nb\nc\r\n", "a\nc\n", "a\r\nc\r\n"},
        {"a\r\nb\r\nc", "b\na\nc", "b\r\na\r\nc"},
        {"a\r\nb", "a", "a"},
        {"a\r\n", "", ""},
        // No other program knows this one.
        {"a\u2029b", "a\nb\nc", "a\u2029b\nc"},
        {"a\u2029b\r\nc", "a\nnew\nb\nc", "a\u2029new\r\nb\r\nc"},
        // "\r" and "\n" that come together would be one end.
        {"a\rb\n", "a\n\n", "a\r\r"},
        {"a\rb\n\nc", "a\n\nc", "a\r\rc"},
    };
    for (const Edited& row : rows) {
        check(row);
    }
}

TEST_CASE("any text comes back from the editor, edited or not") {
    std::mt19937 random(20190305);
    for (int round = 0; round < 20000; ++round) {
        const std::string note = randomText(random, random() % 9);
        CAPTURE(note);
        REQUIRE(noteTextOf(note, shownText(note)) == note);
        const std::string shown = shownText(randomText(random, random() % 9));
        CAPTURE(shown);
        REQUIRE(shownText(noteTextOf(note, shown)) == shown);
    }
}

TEST_CASE("lines of the note and of the editor") {
    const std::string_view note = "a\rb\nc\u2029d\r\ne";
    struct Row {
        std::size_t noteLine;
        std::size_t shownLine;
    };
    for (const auto& [noteLine, shownLine] : {Row{0, 0}, Row{1, 2}, Row{2, 4}, Row{9, 4}}) {
        CHECK(shownLineOf(note, noteLine) == shownLine);
    }
    for (const auto& [noteLine, shownLine] :
         {Row{0, 0}, Row{0, 1}, Row{1, 2}, Row{1, 3}, Row{2, 4}, Row{2, 9}}) {
        CHECK(noteLineOf(note, shownLine) == noteLine);
    }
}
