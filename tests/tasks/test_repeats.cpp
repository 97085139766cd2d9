// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "tasks/repeats.h"

using namespace tessaly;
using namespace tessaly::tasks;

TEST_CASE("later days are counted from the first, and cut to the month's end") {
    struct Row {
        const char* from;
        RepeatInterval interval;
        int count;
        const char* day;
    };
    for (const Row& row : std::vector<Row>{
             {"2019-05-21", RepeatInterval::day, 11, "2019-06-01"},
             {"2019-05-21", RepeatInterval::week, 1, "2019-05-28"},
             {"2019-05-21", RepeatInterval::week, 3, "2019-06-11"},
             {"2019-01-31", RepeatInterval::month, 1, "2019-02-28"},
             {"2019-01-31", RepeatInterval::month, 2, "2019-03-31"},
             {"2019-11-30", RepeatInterval::quarter, 1, "2020-02-29"},
             {"2020-02-29", RepeatInterval::year, 1, "2021-02-28"},
             {"2020-02-29", RepeatInterval::year, 4, "2024-02-29"},
             {"2019-05-21", RepeatInterval::day, 0, "2019-05-21"},
             {"9999-12-30", RepeatInterval::day, 1, "9999-12-31"},
             {"9999-12-31", RepeatInterval::day, 1, "none"},
             {"9999-10-01", RepeatInterval::quarter, 1, "none"},
             {"2019-05-21", RepeatInterval::week, 2147483647, "none"},
             {"2019-05-21", RepeatInterval::year, 2147483647, "none"},
             {"2019-05-21", RepeatInterval::year, 65536, "none"},
             {"2019-05-21", RepeatInterval::day, -2147483647 - 1, "none"},
         }) {
        CAPTURE(row.from);
        CAPTURE(row.count);
        const auto day = repeatDay(*base::dayFromTagText(row.from), row.interval, row.count);
        CHECK((day ? base::tagText(*day) : "none") == row.day);
    }
}

TEST_CASE("repeat tags are found and taken out with the white space before them") {
    struct Row {
        const char* line;
        const char* first;
        const char* without;
    };
    for (const Row& row : std::vector<Row>{
             {"* a @repeat(2/5) b", "2/5 3-16", "* a b"},
             {"@repeat(2/5)\r", "2/5 0-12", "\r"},
             {"a\xC2\xA0@repeat(01/999999999) @repeat(1/2) @final-repeat", "1/999999999 1-24", "a"},
             {"(@repeat(1/2))", "1/2 1-13", "()"},
             {"a @repeat(0/3) @repeat(1/0) @repeat(-1/3) @repeat(1/3", "none",
              "a @repeat(0/3) @repeat(1/0) @repeat(-1/3) @repeat(1/3"},
             {"a @repeat(1/1000000000) @repeat(1) @repeat(1/2/3) @repeat( 1/2) @repeated(1/2)",
              "none",
              "a @repeat(1/1000000000) @repeat(1) @repeat(1/2/3) @repeat( 1/2) @repeated(1/2)"},
             {"a @repeat(x) @repeat(3/4)", "3/4 12-25", "a @repeat(x)"},
             {"a@repeat(1/2) @final-repeated", "none", "a@repeat(1/2) @final-repeated"},
         }) {
        CAPTURE(row.line);
        const auto tag = findRepeatTag(row.line);
        CHECK((tag ? fmt::format("{}/{} {}-{}", tag->index, tag->count, tag->start, tag->end)
                   : "none") == row.first);
        CHECK(removeRepeatTags(row.line) == row.without);
    }
}

TEST_CASE("a later repeat differs in a higher number alone") {
    struct Row {
        const char* line;
        const char* other;
        bool isLater;
    };
    for (const Row& row : std::vector<Row>{
             {"* a @repeat(9/12) b", "* a @repeat(10/12) b\r", true},
             {"* a @repeat(1/3)\r", "* a @repeat(3/3)", true},
             {"* a @repeat(2/3)", "* a @repeat(2/3)", false},
             {"* a @repeat(2/3)", "* a @repeat(1/3)", false},
             {"* a @repeat(1/3)", "* a @repeat(2/4)", false},
             {"* a @repeat(1/3)", "* [x] a @repeat(2/3)", false},
             {"* a @repeat(1/3)", "* a @repeat(2/3) b", false},
             {"* a @repeat(1/3)", "* a  @repeat(2/3)", false},
             {"* a", "* a @repeat(2/3)", false},
             {"* a (1/3)", "* a (2/3)", false},
         }) {
        CAPTURE(row.other);
        CHECK(isLaterRepeat(row.line, row.other) == row.isLater);
    }
}
