// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>
#include <fmt/format.h>

#include "grammar/date_tags.h"

using namespace tessaly;
using namespace tessaly::grammar;

namespace {

std::string show(const std::optional<DateTag>& tag) {
    if (!tag) {
        return "none";
    }
    const char* kind = tag->kind == MarkKind::scheduleTag ? ">"
                       : tag->kind == MarkKind::backLink  ? "<"
                                                          : "@";
    return fmt::format("{}{} {}+{}{}", kind, tag->dateText, tag->range.location, tag->range.length,
                       tag->day ? "" : " no day");
}

std::string show(const std::optional<DoneTag>& tag) {
    if (!tag) {
        return "none";
    }
    const std::string time =
        tag->time ? fmt::format("{:02}:{:02}", tag->time->hour, tag->time->minute) : "-";
    return fmt::format("{} '{}' {} {}+{}", tag->dateText, tag->timeText, time, tag->range.location,
                       tag->range.length);
}

}  // namespace

TEST_CASE("date tags are found and taken out with the blank before them") {
    struct Row {
        const char* line;
        const char* first;
        const char* without;
    };
    for (const Row& row : std::vector<Row>{
             {"* [>] Call Bob >2019-05-21", ">2019-05-21 14+12", "* [>] Call Bob"},
             {"* Call Bob>2019-05-21", ">2019-05-21 10+11", "* Call Bob"},
             {"* 😀 <2019-05-20 x @2019-05-22", "<2019-05-20 4+12", "* 😀 x"},
             {"\xC2\xA0>2019-05-21", ">2019-05-21 0+12", ""},
             {">2019-13-01 >2019-00-10 >2019-01-32", "none", ">2019-13-01 >2019-00-10 >2019-01-32"},
             {"a >2019-02-31", ">2019-02-31 1+12 no day", "a"},
             {">2019-05-213", ">2019-05-21 0+11", "3"},
             {">٢٠١٩-05-21", "none", ">٢٠١٩-05-21"},
             {"@done(2019-05-21)", "none", "@done(2019-05-21)"},
         }) {
        CAPTURE(row.line);
        CHECK(show(DateTags::findDateTag(row.line)) == row.first);
        CHECK(DateTags::removeDateTags(row.line) == row.without);
    }
}

TEST_CASE("completion tags are read with their time, on either clock") {
    struct Row {
        const char* line;
        const char* first;
        const char* without;
    };
    for (const Row& row : std::vector<Row>{
             {"* [x] Pay @done(2019-05-21 09:05 PM)", "2019-05-21 '09:05 PM' 21:05 9+27",
              "* [x] Pay"},
             {"@done(2019-05-21)", "2019-05-21 '' - 0+17", ""},
             {"@done(2019-05-21 12:30 AM)", "2019-05-21 '12:30 AM' 00:30 0+26", ""},
             {"@done(2019-05-21 12:30pm)", "2019-05-21 '12:30pm' 12:30 0+25", ""},
             {"@done(2019-05-21 14:07 PM)", "2019-05-21 '14:07 PM' 14:07 0+26", ""},
             {"@done(2019-05-21 9:05)", "none", "@done(2019-05-21 9:05)"},
             {"@done(2019-05-21 24:05)", "none", "@done(2019-05-21 24:05)"},
             {"@done(2019-05-21", "none", "@done(2019-05-21"},
             {"a @done(2019-05-21) b @done(2019-05-22)", "2019-05-21 '' - 1+18", "a b"},
         }) {
        CAPTURE(row.line);
        CHECK(show(DateTags::findDoneTag(row.line)) == row.first);
        CHECK(DateTags::findAndRemoveDoneTag(row.line) == row.without);
    }
}

TEST_CASE("a written date reads back") {
    using base::HourCycle;
    struct Row {
        int hour;
        TagTime with;
        HourCycle cycle;
        const char* text;
    };
    const base::Day day = *base::dayFromTagText("2019-05-21");
    for (const Row& row : std::vector<Row>{
             {14, TagTime::none, HourCycle::twelve, "2019-05-21"},
             {14, TagTime::timeAndMarker, HourCycle::twentyFour, "2019-05-21 14:07"},
             {14, TagTime::timeAndMarker, HourCycle::twelve, "2019-05-21 02:07 PM"},
             {14, TagTime::time, HourCycle::twelve, "2019-05-21 02:07"},
             {0, TagTime::timeAndMarker, HourCycle::twelve, "2019-05-21 12:07 AM"},
             {12, TagTime::timeAndMarker, HourCycle::twelve, "2019-05-21 12:07 PM"},
         }) {
        const std::string text = writeTagDate({day, row.hour, 7}, row.with, row.cycle);
        CHECK(text == row.text);
        const auto read = DateTags::findDoneTag("@done(" + text + ")");
        REQUIRE(read);
        if (row.with == TagTime::timeAndMarker) {
            CHECK(read->time->hour == row.hour);
        }
    }
}
