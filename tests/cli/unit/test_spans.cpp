// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "cli/help.h"
#include "cli/spans.h"

using namespace tessaly::cli;

namespace {

Terminal terminalOf(std::size_t columns) {
    Terminal terminal;
    terminal.isTerminal = true;
    terminal.columns = columns;
    return terminal;
}

std::string plain(const Spans& spans) {
    return drawn(spans, Terminal{});
}

}  // namespace

TEST_CASE("a line is cut at whole characters") {
    const auto check = [](const Spans& spans, std::size_t columns, std::string_view expected) {
        CAPTURE(expected);
        const Spans cut = cutTo(spans, columns, terminalOf(80));
        CHECK(plain(cut) == expected);
        CHECK(widthOf(cut) <= columns);
    };
    const Spans two{{Style::plain, "abc"}, {Style::dim, "def"}};
    check(two, 6, "abcdef");
    check(two, 5, "abcd…");
    check(two, 4, "abc…");
    check(two, 3, "ab…");
    check(two, 1, "…");
    check({{Style::plain, "日本語"}}, 6, "日本語");
    check({{Style::plain, "日本語"}}, 5, "日本…");
    check({{Style::plain, "日本語"}}, 4, "日…");
    check({{Style::plain, "e\u0301e\u0301e\u0301"}}, 2, "e\u0301…");
    check({{Style::plain, "👩‍👩‍👧👩‍👩‍👧"}}, 3, "👩‍👩‍👧…");
}

TEST_CASE("the right part of a line ends at the edge and keeps its end") {
    const auto check = [](std::string_view left, std::string_view right,
                          std::string_view expected) {
        CAPTURE(expected);
        const Spans line = withRightPart({{Style::plain, std::string{left}}},
                                         {{Style::dim, std::string{right}}}, terminalOf(20));
        CHECK(plain(line) == expected);
    };
    check("short", "a:1", "short            a:1");
    check("exactly thirteen", "a:1", "exactly thirte…  a:1");
    check("text", "", "text");
    check("a text of some length", "", "a text of some leng…");
    check("text", "Folder/Note:12", "text        …Note:12");
    check("text that is long", "Folder/日本語:3", "text that …  …本語:3");
    check("日本語日本語日本語", "a:1", "日本語日本語日…  a:1");
}

TEST_CASE("the dots have a form for every character set") {
    Terminal terminal = terminalOf(80);
    terminal.isUtf8 = false;
    CHECK(plain(cutTo({{Style::plain, "abcdefgh"}}, 6, terminal)) == "abc...");
}

TEST_CASE("text is wrapped at blanks") {
    const auto check = [](std::string_view text, std::size_t indent, std::string_view expected) {
        CAPTURE(text);
        CHECK(wrapped(text, indent, 10) == expected);
    };
    check("", 0, "");
    check("one two", 0, "one two\n");
    check("one two three", 0, "one two\nthree\n");
    check("one two three", 4, "    one\n    two\n    three\n");
    check("0123456789", 0, "0123456789\n");
    check("a 0123456789ab b", 0, "a\n0123456789ab\nb\n");
    check("a\n\nb c", 2, "  a\n\n  b c\n");
    check("日本 語日 本", 0, "日本 語日\n本\n");
}
