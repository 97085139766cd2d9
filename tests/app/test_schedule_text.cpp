// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "app/schedule_text.h"

using namespace tessaly;

namespace {

using enum base::DayOfWeek;

base::Day scheduleDay(std::string_view text) {
    return *base::dayFromTagText(text);
}

struct FieldRow {
    std::string text;
    std::string today;
    base::DayOfWeek first;
    std::string expected;  // empty: no day
};

void checkField(const FieldRow& row) {
    CAPTURE(row.text);
    CAPTURE(row.today);
    const auto found = app::scheduledDay(row.text, scheduleDay(row.today), row.first,
                                         base::LocaleFormats{"en_GB"});
    CHECK((found ? base::tagText(*found) : "") == row.expected);
}

TEST_CASE("the schedule field takes weekdays, distances, weeks and days of a month") {
    // 5 March 2019 is a Tuesday of week 10.
    const FieldRow rows[] = {
        {" Fri ", "2019-03-05", monday, "2019-03-08"},
        {"+3d", "2019-03-05", monday, "2019-03-08"},
        {"2019-03-31", "2019-03-05", monday, "2019-03-31"},
        {"20190331", "2019-03-05", monday, "2019-03-31"},
        {"", "2019-03-05", monday, ""},
        {"-3", "2019-03-05", monday, ""},
        {"3x", "2019-03-05", monday, ""},
        // Days of a month
        {"14", "2019-03-05", monday, "2019-03-14"},
        {"5", "2019-03-05", monday, "2019-03-05"},
        {"04", "2019-03-05", monday, "2019-04-04"},
        {"31", "2019-04-01", monday, "2019-05-31"},
        {"30", "2019-01-31", monday, "2019-03-30"},
        {"29", "2020-02-01", monday, "2020-02-29"},
        {"1", "2019-12-02", monday, "2020-01-01"},
        {"0", "2019-03-05", monday, ""},
        {"32", "2019-03-05", monday, ""},
        // Weeks
        {"w12", "2019-03-05", monday, "2019-03-18"},
        {"W11", "2019-03-05", sunday, "2019-03-10"},
        {"w10", "2019-03-05", monday, "2019-03-05"},
        {"w9", "2019-03-05", monday, "2020-02-24"},
        {"w1", "2019-03-05", monday, "2019-12-30"},
        {"w1", "2018-12-31", monday, "2018-12-31"},
        {"w53", "2019-03-05", monday, "2020-12-28"},
        {"w53", "2021-02-01", monday, "2026-12-28"},
        {"w52", "2021-01-02", monday, "2021-12-27"},
        {"w0", "2019-03-05", monday, ""},
        {"w54", "2019-03-05", monday, ""},
        {"w", "2019-03-05", monday, ""},
        {"w-1", "2019-03-05", monday, ""},
    };
    for (const FieldRow& row : rows) {
        checkField(row);
    }
}

TEST_CASE("a week's number is that of the year that holds most of it") {
    const struct {
        std::string day;
        base::DayOfWeek first;
        int expected;
    } rows[] = {{"2019-03-05", monday, 10},  {"2018-12-30", monday, 52}, {"2018-12-31", monday, 1},
                {"2021-01-03", monday, 53},  {"2021-01-03", sunday, 1},  {"2021-01-02", sunday, 53},
                {"2022-01-01", saturday, 1}, {"2020-12-31", monday, 53}};
    for (const auto& row : rows) {
        CAPTURE(row.day);
        CHECK(app::weekNumber(scheduleDay(row.day), row.first) == row.expected);
    }
}

TEST_CASE("the field offers days that lie ahead, a month's end being cut") {
    const auto offered = [](std::string_view today, base::DayOfWeek first) {
        std::string text;
        for (const auto& choice :
             app::scheduleChoices(scheduleDay(today), first, base::LocaleFormats{"en_GB"})) {
            text += choice.text + " " + base::tagText(choice.day) + "\n";
        }
        return text;
    };
    CHECK(offered("2019-01-31", monday) ==
          "Today 2019-01-31\nTomorrow 2019-02-01\nSaturday 2019-02-02\nNext week 2019-02-04\n"
          "In two weeks 2019-02-14\nIn a month 2019-02-28\n");
    CHECK(offered("2019-03-03", sunday).find("Next week 2019-03-10") != std::string::npos);
}

TEST_CASE("what the field has understood is told in words") {
    const struct {
        std::string day;
        std::string expected;
    } rows[] = {{"2019-03-05", "Tuesday, 5 March 2019 (today)"},
                {"2019-03-06", "Wednesday, 6 March 2019 (tomorrow)"},
                {"2019-03-04", "Monday, 4 March 2019 (yesterday)"},
                {"2019-03-08", "Friday, 8 March 2019 (in 3 days)"},
                {"2019-03-03", "Sunday, 3 March 2019 (2 days ago)"}};
    for (const auto& row : rows) {
        CHECK(app::dayInWords(scheduleDay(row.day), scheduleDay("2019-03-05"),
                              base::LocaleFormats{"en_GB"}) == row.expected);
    }
}

}  // namespace
