// SPDX-License-Identifier: MIT
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "grammar/line_action.h"

using namespace tessaly::grammar;

namespace {

struct Row {
    const char* line;
    const char* done;
    const char* canceled;
    const char* scheduled;
};

}  // namespace

TEST_CASE("the state actions set a box, change it, or take it off") {
    for (const Row& row : std::vector<Row>{
             {"* [ ] Pay", "* [x] Pay", "* [-] Pay", "* [>] Pay"},
             {"* [x] Pay", "* Pay", "* [-] Pay", "* [x] Pay"},
             {"* [>] Pay", "* [x] Pay", "* [-] Pay", "* Pay"},
             {"* Pay", "* [x] Pay", "* [-] Pay", "* [>] Pay"},
             {" \t12) [>] Pay\r", " \t12) [x] Pay\r", " \t12) [-] Pay\r", " \t12) Pay\r"},
             // What the patterns do not take for a box is text.
             {"* [X] Pay", "* [x] [X] Pay", "* [-] [X] Pay", "* [>] [X] Pay"},
             {"* [\t] Pay", "* [x] [\t] Pay", "* [-] [\t] Pay", "* [>] [\t] Pay"},
             {"* [x] [-] Pay", "* [-] Pay", "* [-] [-] Pay", "* [x] [-] Pay"},
             // Nothing is lost behind a line terminator, nor looked for there.
             {"* a\xE2\x80\xA8* [x] b", "* [x] a\xE2\x80\xA8* [x] b", "* [-] a\xE2\x80\xA8* [x] b",
              "* [>] a\xE2\x80\xA8* [x] b"},
             {"a\xE2\x80\xA8* [x] b", "a\xE2\x80\xA8* [x] b", "a\xE2\x80\xA8* [x] b",
              "a\xE2\x80\xA8* [x] b"},
             {"\xC2\xA0* [ ] 😀 \xFF é", "\xC2\xA0* [x] 😀 \xFF é", "\xC2\xA0* [-] 😀 \xFF é",
              "\xC2\xA0* [>] 😀 \xFF é"},
             {"*Pay", "*Pay", "*Pay", "*Pay"},
             // Completion tags go where the action changes the line.
             {"* [x] Pay @done(2019-05-21 09:05)", "* Pay @done(2019-05-21 09:05)", "* [-] Pay",
              "* [x] Pay @done(2019-05-21 09:05)"},
             {"* [x] @done(2019-05-21)", "* @done(2019-05-21)", "* [-] ",
              "* [x] @done(2019-05-21)"},
             {"* @done(2019-05-21)", "* [x] @done(2019-05-21)", "* [-] ", "* [>] "},
             // A tag that goes uncovers no box.
             {"* @done(2019-05-21)[-] a", "* [x] @done(2019-05-21)[-] a", "* [-] [-] a",
              "* [>] [-] a"},
             {"* [-] a @done(2019-05-21) b @done(2019-05-22)\r",
              "* [x] a @done(2019-05-21) b @done(2019-05-22)\r", "* a b\r",
              "* [-] a @done(2019-05-21) b @done(2019-05-22)\r"},
         }) {
        CAPTURE(row.line);
        CHECK(applied(markAsDone, row.line) == row.done);
        CHECK(applied(markAsCanceled, row.line) == row.canceled);
        CHECK(applied(markAsScheduled, row.line) == row.scheduled);
        CHECK(isApplicable(markAsScheduled.record, row.line) ==
              (row.scheduled != std::string(row.line)));
    }
}

TEST_CASE("the state actions, which use the scanner, do to random lines what their patterns say") {
    const std::vector<std::string> pieces{
        "*",     "-",   "3.",   "12)", "7",  "[ ] ",     "[x] ",         "[-] ", "[>] ",
        "[\t] ", "[x]", "\t",   " ",   "\r", "\xC2\xA0", "\xE2\x80\xA8", "\v",   "[\xC2\xA0] ",
        "é",     "😀",   "\xFF", "# ",  "> ", "* ",       "- ",           "1. "};
    std::mt19937 random(20190521);
    for (int i = 0; i < 20'000; ++i) {
        std::string line;
        for (std::size_t left = random() % 8; left > 0; --left) {
            line += pieces[random() % pieces.size()];
        }
        CAPTURE(line);
        for (const StateAction* action : {&markAsDone, &markAsCanceled, &markAsScheduled}) {
            REQUIRE(applied(*action, line) == applied(action->record, line));
        }
    }
}

TEST_CASE("no length makes a state action give a line up") {
    const std::string digits(500'000, '1');
    CHECK(applied(markAsDone, digits + ". [ ] a") == digits + ". [x] a");
    const std::string tabs(500'000, '\t');
    CHECK(applied(markAsCanceled, tabs + "- [x] a") == tabs + "- [-] a");
}

TEST_CASE("a record that is no state's: what is missing is empty, and `$` may stand for itself") {
    const LineAction shiftRight{.linePattern = u"^(.*)$", .applyTemplate = "\t$1$2$"};
    CHECK(applied(shiftRight, "a\r") == "\ta$\r");
    const LineAction heading{.linePattern = u"^(.*)$",
                             .applyTemplate = "## $1",
                             .stripPattern = u"^#+ (.*)",
                             .stripTemplate = "$1",
                             .appliedPattern = u"^## (.*)",
                             .removeTemplate = "$1",
                             .exclusionPattern = u"^> "};
    CHECK(applied(heading, "# Plans") == "## Plans");
    CHECK(applied(heading, "## Plans") == "Plans");
    CHECK(applied(heading, "> Plans") == "> Plans");
}
