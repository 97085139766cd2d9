// SPDX-License-Identifier: MIT
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "store/task_line_merge.h"

using namespace tessaly;
using store::mergeTaskLine;

namespace {

constexpr std::string_view both = "(both)";

void check(std::string_view base, std::string_view mine, std::string_view theirs,
           std::string_view expected) {
    CAPTURE(base);
    CAPTURE(mine);
    CAPTURE(theirs);
    CHECK(mergeTaskLine(base, mine, theirs).value_or(std::string(both)) == expected);
    CHECK((mergeTaskLine(base, theirs, mine).value_or(std::string(both)) == both) ==
          (expected == both));
}

/// A task line of parts of which each version of a task may have any.
std::string randomTask(std::mt19937& random) {
    const auto one = [&](std::vector<std::string> choices) {
        return choices[random() % choices.size()];
    };
    return one({"* ", "* ", "\t- "}) + one({"", "[ ] ", "[x] ", "[-] "}) +
           one({"", "", "#a ", "@me "}) + one({"Call Bob", "Call Bob", "Call  Bob now", "(#b)"}) +
           one({"", " #a", "  #a #a", " mid #c text"}) + one({"", " >2019-05-21", " >2019-05-22"}) +
           one({"", " @done(2019-05-21)", "\xC2\xA0@2019-05-20"}) + one({"", "", "\r", " "});
}

}  // namespace

TEST_CASE("changes of different fields go together") {
    check("* [ ] Call Bob", "* [x] Call Bob @done(2019-05-21)", "* [ ] Call Bob >2019-05-25",
          "* [x] Call Bob @done(2019-05-21) >2019-05-25");
    check("* Call Bob", "* [x] Call Bob", "* Call Bob and Ann", "* [x] Call Bob and Ann");
    check("- Call Bob", "\t- Call Bob", "- Call Bob #work", "\t- Call Bob #work");
    check("1. Call Bob #a #b", "1. Call Bob #b", "1. Call Bob #a", "1. Call Bob");
    check("* Call Bob >2019-05-21 #a", "* [x] Call Bob >2019-05-21 #a", "* Call Bob >2019-05-25 #a",
          "* [x] Call Bob >2019-05-25 #a");
    check("* Call Bob #p(1)", "* Call Bob #p(2)", "* Call Bob #p(1) @x", "* Call Bob #p(2) @x");
    check("* Call Bob", "* #a Call Bob", "* [x] Call Bob", "* [x] #a Call Bob");
    check("* Call Bob", "* Call #a Bob", "* Call #b Bob", "* Call #a #b Bob");
    check("* Call (Bob)", "* [x] Call (Bob)", "* Call (#a Bob)", "* [x] Call (#a Bob)");
    check("* Call Bob <2019-05-01", "* Call Bob <2019-05-01 @repeat(1/3)", "* Call Bob >2019-05-25",
          "* Call Bob @repeat(1/3) >2019-05-25");
}

TEST_CASE("the same change of both counts once") {
    check("* Call Bob", "* [x] Call Bob #a", "* [x] Call Bob #a #b", "* [x] Call Bob #a #b");
    check("* Call Bob", "* Call Ann @me", "* Call Ann >2019-05-25", "* Call Ann @me >2019-05-25");
}

TEST_CASE("what no change touches stays byte for byte") {
    check("* Call\t Bob\xC2\xA0 now\r", "* [x] Call\t Bob\xC2\xA0 now\r",
          "* Call\t Bob\xC2\xA0 now >2019-05-25\r", "* [x] Call\t Bob\xC2\xA0 now >2019-05-25\r");
    check("* Call Bob\xC2\xA0>2019-05-21  #a", "* [x] Call Bob\xC2\xA0>2019-05-21  #a",
          "* Call Bob\xC2\xA0>2019-05-22  #a", "* [x] Call Bob\xC2\xA0>2019-05-22  #a");
    check("* Call caf\xE9 ", "* [x] Call caf\xE9 ", "* Call caf\xE9 #a", "* [x] Call caf\xE9 #a");
}

TEST_CASE("changes that do not go together leave both lines") {
    check("* [ ] Call Bob", "* [x] Call Bob", "* [-] Call Bob", both);
    check("* Call Bob", "* Call Bob >2019-05-21", "* Call Bob >2019-05-22", both);
    check("* Call Bob", "* Call Bob @done(2019-05-21)", "* Call Bob @done(2019-05-22)", both);
    check("* Call Bob >2019-05-20", "* Call Bob", "* Call Bob >2019-05-22", both);
    check("* Call Bob", "* Call Bobby", "* Call Rob", both);
    check("* Call Bob #a", "* Call #a Bob", "* Call Bob now #a", both);
    check("* Call Bob", "* Buy milk", "* [x] Call Bob", both);
    check("* Call Bob", "Call Bob", "* [x] Call Bob", both);
    check("Call Bob", "Call Bob #a", "Call Bob #b", both);
    check("* Call Bob", "\t* Call Bob", "- Call Bob", both);
    // Behind the open parenthesis the second tag would be read as the first one's argument.
    check("* Call #p(x", "* Call #p(x now", "* #z(1) Call #p(x", both);
}

TEST_CASE("any versions: what one side left alone is the other's, and no tag is lost") {
    std::mt19937 random(815);
    int merges = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string base = randomTask(random);
        const std::string mine = randomTask(random);
        const std::string theirs = randomTask(random);
        CAPTURE(base);
        CAPTURE(mine);
        CAPTURE(theirs);
        REQUIRE(mergeTaskLine(base, base, theirs) == theirs);
        REQUIRE(mergeTaskLine(base, mine, base) == mine);
        REQUIRE(mergeTaskLine(base, mine, mine) == mine);
        const auto merged = mergeTaskLine(base, mine, theirs);
        const auto swapped = mergeTaskLine(base, theirs, mine);
        REQUIRE(merged.has_value() == swapped.has_value());
        if (!merged) {
            continue;
        }
        ++merges;
        for (const std::string_view field : {"#a", "#b", "#c", "@me", ">2019-05-21", ">2019-05-22",
                                             "@done", "@2019", "now", "[x]", "[-]", "text"}) {
            const auto has = [field](std::string_view line) {
                return line.find(field) != std::string_view::npos;
            };
            CAPTURE(field);
            CAPTURE(*merged);
            const bool expected = has(mine) == has(base) ? has(theirs) : has(mine);
            REQUIRE(has(*merged) == expected);
            REQUIRE(has(*swapped) == expected);
        }
    }
    CHECK(merges > 300);
}

TEST_CASE("a task is known by its text") {
    const auto check = [](std::string_view line, std::string_view expected) {
        CAPTURE(line);
        CHECK(store::taskText(line).value_or("(none)") == expected);
    };
    check("\t* [x] Call #a Bob >2019-05-21 @done(2019-05-21 09:05 PM)\r", "Call Bob");
    check("- Mail a@b.c #1", "Mail a@b.c #1");
    check("* #a #b", "(none)");
    check("* ", "(none)");
    check("Call Bob", "(none)");
}
