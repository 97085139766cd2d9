// SPDX-License-Identifier: MIT
#include <algorithm>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "base/write_mode.h"
#include "store/line_diff.h"
#include "store/text_edits.h"
#include "tasks/line_edit.h"

namespace tessaly::tests {
namespace {

using base::Failure;
using tasks::LineEdit;
using tasks::Strictness;
using Kind = LineEdit::Kind;
using Edits = std::vector<LineEdit>;
using Lines = std::vector<std::string>;

LineEdit replace(std::size_t index, std::string before, std::string after) {
    return {Kind::replace, index, 0, std::move(before), std::move(after), {}, 0};
}

LineEdit removal(std::size_t index, std::string before) {
    return {Kind::remove, index, 0, std::move(before), {}, {}, 0};
}

LineEdit insert(std::size_t newIndex, std::string after, std::string anchor = {}) {
    return {Kind::insert, 0, newIndex, {}, std::move(after), std::move(anchor), 0};
}

LineEdit append(std::string after) {
    return {Kind::append, 0, 0, {}, std::move(after), {}, 0};
}

Lines linesOf(std::string_view text) {
    Lines lines;
    for (const std::string_view line : store::linesOfText(text)) {
        lines.emplace_back(line.substr(0, line.size() - (line.ends_with('\r') ? 1 : 0)));
    }
    if (text.empty() || text.ends_with('\n')) {
        lines.pop_back();
    }
    return lines;
}

struct Row {
    std::string_view text;
    Edits edits;
    std::string_view expected;  // "!": refused
};

void check(std::initializer_list<Row> rows, Strictness strictness = Strictness::allOrNothing) {
    for (const Row& row : rows) {
        CAPTURE(row.text);
        CAPTURE(row.expected);
        const auto result = tasks::withEdits(row.text, row.edits, strictness);
        if (!result) {
            CHECK(row.expected == "!");
            CHECK(result.failure().kind == Failure::Kind::changed);
            continue;
        }
        CHECK(result->text == row.expected);
        const auto back = tasks::withEdits(result->text, tasks::inverse(result->edits));
        REQUIRE(back.ok());
        CHECK(linesOf(back->text) == linesOf(row.text));
    }
}

}  // namespace

TEST_CASE("line edits: a text keeps its line breaks and what is not edited") {
    check({
        {"", {}, ""},
        {"\r", {}, "\r"},
        {"\n\r", {}, "\n\r"},
        {"a\r\nb\nc", {replace(1, "b", "B"), replace(0, "a", "A")}, "A\r\nB\nc"},
        {"a\nb\r", {replace(1, "b", "B")}, "a\nB\r"},
        {"a\r\r\nb", {replace(0, "a\r", "A")}, "A\r\nb"},
        {"x\n\r\ny", {removal(1, "")}, "x\ny"},
        {"a\xe2\x80\xa8"
         "b\vc\n",
         {replace(0,
                  "a\xe2\x80\xa8"
                  "b\vc",
                  "d")},
         "d\n"},
        // What a removed line leaves.
        {"a", {removal(0, "a")}, ""},
        {"a\n", {removal(0, "a")}, ""},
        {"a\nb", {removal(1, "b")}, "a"},
        {"a\r\nb\r\nc", {removal(2, "c"), removal(1, "b")}, "a"},
        {"a\nb\n", {removal(1, "b")}, "a\n"},
        {"a\n\nb", {removal(2, "b")}, "a\n\n"},
        {"a\nb", {removal(0, "a")}, "b"},
        // New lines.
        {"a\r\nb", {insert(1, "x"), insert(3, "y")}, "a\r\nx\r\nb\r\ny"},
        {"a\nb\n", {insert(0, "x"), insert(1, "y"), removal(0, "a")}, "x\ny\nb\n"},
        {"", {insert(0, "x"), append("y")}, "x\ny"},
        {"a", {append(""), append("## Archive"), append("b")}, "a\n\n## Archive\nb"},
        {"a\r", {append("b")}, "a\r\nb"},
        {"a\n", {append(""), append("b")}, "a\n\nb\n"},
        {"a\nb\nc\n", {append("a"), removal(0, "a"), append("c"), removal(2, "c")}, "b\na\nc\n"},
    });
    for (const std::string_view text : {"", "a", "a\n", "a\r\nb", "a\r\nb\r\n", "\n"}) {
        CAPTURE(text);
        std::string expected = *store::withTextAdded(text, "x", base::WriteMode::append);
        expected = *store::withTextAdded(expected, "y", base::WriteMode::append);
        check({{text, {append("x"), append("y")}, expected}});
    }
}

TEST_CASE("line edits: a line is found by its index, else as the only one with its text") {
    check({
        {"a\nx\na\n", {removal(2, "a")}, "a\nx\n"},
        {"new\na\nx\n", {removal(0, "a")}, "new\nx\n"},
        {"a\nx\na\n", {removal(1, "a")}, "!"},
        {"a\n", {replace(0, "b", "c")}, "!"},
        {"a\n", {replace(0, "a", "b"), removal(0, "a")}, "!"},
        {"a\nb\n", {removal(9, "b"), removal(9, "a")}, ""},
        // Each takes another line.
        {"a\na\nb\n", {replace(0, "a", "1"), replace(1, "a", "2")}, "1\n2\nb\n"},
        {"new\na\na\n", {replace(0, "a", "1"), replace(1, "a", "2")}, "new\n1\n2\n"},
        {"a\na\na\n", {replace(0, "a", "1"), replace(2, "a", "2")}, "1\na\n2\n"},
        {"a\na\na\n", {replace(0, "a", "1"), replace(5, "a", "2")}, "!"},
    });
    check(
        {
            {"a\nb\n", {replace(0, "x", "y"), removal(0, "b")}, "a\n"},
            {"a\na\na\n", {replace(0, "a", "1"), replace(5, "a", "2")}, "1\na\na\n"},
            {"x\na\n", {replace(0, "a", "1"), replace(1, "a", "2")}, "x\n2\n"},
            {"a\n", {removal(3, "b"), insert(7, "c", "gone")}, "a\nc\n"},
        },
        Strictness::whatCanBe);
}

TEST_CASE("line edits: an insert follows its neighbour") {
    check({
        {"new\na\nb\n", {insert(1, "x", "a")}, "new\na\nx\nb\n"},
        {"new\na\nb\n", {insert(1, "x", "a"), insert(2, "y", "x")}, "new\na\nx\ny\nb\n"},
        {"new\na\nb\nc\n", {insert(3, "y", "b"), insert(1, "x", "a")}, "new\na\nx\nb\ny\nc\n"},
        {"a\n1\na\n2\n", {insert(2, "x", "a")}, "a\n1\nx\na\n2\n"},
        {"b\nc\n", {insert(1, "x", "a")}, "b\nx\nc\n"},
        {"new\na\n", {insert(0, "x")}, "x\nnew\na\n"},
        {"b\n\nc\n", {insert(1, "x", "")}, "b\nx\n\nc\n"},
        {"new\nb\nc\n", {replace(0, "b", "B"), insert(1, "x", "B")}, "new\nB\nx\nc\n"},
    });
}

TEST_CASE("line edits: what was made is known again after others' changes") {
    struct Case {
        std::string_view before;
        Edits edits;
        std::string_view after;
        std::string_view notMade;  // `before`, and then changed by others
        std::string_view made;
    };
    const Case cases[] = {
        {"a\nb\n", {replace(0, "a", "A")}, "A\nb\n", "new\na\n", "b\nnew\nA\n"},
        {"A\na\n", {replace(1, "a", "A")}, "A\nA\n", "A\na\nx\n", "x\nA\nA\n"},
        {"a\n", {append(""), append("x")}, "a\n\nx\n", "a\n\n\n", "x"},
        {"a\na\nb\n", {removal(0, "a")}, "a\nb\n", "b\na\na\n", "x\nb\na\n"},
        {"a\nb\n", {removal(0, "a"), append("a")}, "b\na\n", "x\na\nb\n", "x\nb\na\ny\n"},
        {"a\nb\n", {replace(0, "a", "b"), replace(1, "b", "c")}, "b\nc\n", "a\nb\nx\n", "c\n"},
    };
    for (const Case& row : cases) {
        CAPTURE(row.after);
        const auto result = tasks::withEdits(row.before, row.edits).value();
        CHECK(result.text == row.after);
        CHECK_FALSE(tasks::seemMade(row.before, result.edits));
        CHECK_FALSE(tasks::seemMade(row.notMade, result.edits));
        CHECK(tasks::seemMade(row.after, result.edits));
        CHECK(tasks::seemMade(row.made, result.edits));
    }
}

TEST_CASE("line edits: their inverse gives the lines back, also among others' lines") {
    std::mt19937 random(20191231);
    const auto below = [&](std::size_t end) { return random() % end; };
    for (int round = 0; round < 2000; ++round) {
        // Lines are equal in some rounds, and all different in others.
        const std::size_t kinds = round % 2 == 0 ? 3 : 1'000'000'000;
        const auto line = [&] { return std::to_string(below(kinds)); };
        std::string text;
        for (std::size_t left = below(12); left > 0; --left) {
            text += line() + (left == 1 && below(2) == 0 ? "" : below(3) == 0 ? "\r\n" : "\n");
        }
        const Lines old = linesOf(text);
        Edits edits;
        for (std::size_t at = 0; at < old.size(); ++at) {
            if (const std::size_t what = below(4); what < 2) {
                edits.push_back(what == 0 ? removal(at, old[at]) : replace(at, old[at], line()));
            }
        }
        for (std::size_t at = 0; at < old.size(); at += 1 + below(3)) {
            edits.push_back(below(3) == 0 ? append(line()) : insert(at, line()));
        }
        std::shuffle(edits.begin(), edits.end(), random);
        CAPTURE(text);
        const auto result = tasks::withEdits(text, edits).value();
        CAPTURE(result.text);
        const Lines lines = linesOf(result.text);
        REQUIRE(result.edits.size() == edits.size());
        for (const LineEdit& edit : result.edits) {
            if (edit.kind != Kind::remove) {
                REQUIRE(edit.newIndex < lines.size());
                CHECK(lines[edit.newIndex] == edit.after);
            }
        }
        const auto back = tasks::withEdits(result.text, tasks::inverse(result.edits)).value();
        CHECK(linesOf(back.text) == old);
        CHECK(linesOf(tasks::withEdits(back.text, tasks::inverse(back.edits)).value().text) ==
              lines);
        if (kinds < 10) {
            continue;
        }
        Lines changed = lines;
        changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(below(lines.size() + 1)),
                       "foreign");
        std::string changedText;
        for (const std::string& each : changed) {
            changedText += each + "\n";
        }
        CAPTURE(changedText);
        CHECK(tasks::seemMade(changedText, result.edits) == !edits.empty());
        Lines left = linesOf(tasks::withEdits(changedText, tasks::inverse(result.edits))->text);
        CHECK(std::erase(left, "foreign") == 1);
        CHECK(left == old);
    }
}

}  // namespace tessaly::tests
