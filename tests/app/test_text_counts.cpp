// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "app/text_counts.h"

using namespace tessaly;

namespace {

/// "words characters open/done"
std::string counted(std::string_view text) {
    const app::TextCounts counts = app::countText(text, {});
    return fmt::format("{} {} {}/{}", counts.words, counts.characters, counts.openTasks,
                       counts.doneTasks);
}

}  // namespace

TEST_CASE("what a reader would count is counted") {
    struct Row {
        std::string_view text, counts;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"", "0 0 0/0"},
             {"one two\nthree\n", "3 12 0/0"},
             {"one\r\ntwo\r\n", "2 6 0/0"},
             {"# Head\n---\n> quoted\n", "2 17 0/0"},
             {"* open\n* [x] done\n- [-] cancelled\n* [>] later\n- item\n1. numbered\n",
              "6 59 1/1"},
             // Neither boxes nor dates are words, tags are.
             {"* [x] Call #work @ann >2019-03-08 @done(2019-03-05 09:00 AM)\n", "3 60 0/1"},
             // What stands in code is neither markup nor task.
             {"```\n* a b\n```\n* c\n", "3 14 1/0"},
             {"na\u0308he \U0001F469\u200D\U0001F52C\n", "1 6 0/0"},
             {"\xEF\xBB\xBF"
              "bom",
              "1 3 0/0"},
             {"\xFF", "0 1 0/0"}}) {
        CAPTURE(row.text);
        CHECK(counted(row.text) == row.counts);
    }
}

TEST_CASE("counts are told in the user's words and digits") {
    const base::LocaleFormats english("en_GB");
    const app::TextCounts note{1280, 6400, 4, 3};
    const app::TextCounts small{1, 1, 1, 0};
    CHECK(app::countsInWords(note, {}, english) == "1,280 words · 3 of 7 tasks done");
    CHECK(app::countsInWords(note, app::TextCounts{12, 60, 1, 1}, english) ==
          "12 of 1,280 words selected");
    CHECK(app::countsInWords(small, {}, english) == "1 word · 0 of 1 task done");
    CHECK(app::countsInWords({}, {}, english) == "0 words");
    CHECK(app::charactersInWords(note, base::LocaleFormats("de_DE")) == "6.400 characters");
    CHECK(app::charactersInWords(small, english) == "1 character");
}
