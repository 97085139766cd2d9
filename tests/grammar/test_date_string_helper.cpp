// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "grammar/date_string_helper.h"

using namespace tessaly;
using namespace tessaly::grammar;

namespace {

const base::Day today = *base::dayFromTagText("2019-05-21");

}  // namespace

TEST_CASE("days near today have names, others their date") {
    const DateStringHelper english{base::LocaleFormats("en_GB")};
    for (const auto& [filename, name] : std::vector<std::pair<const char*, const char*>>{
             {"20190520.txt", "yesterday"},
             {"20190521.txt", "today"},
             {"20190522.txt", "tomorrow"},
             {"20190523.txt", "Thu, 23 May"},
             {"20180521.txt", "Mon, 21 May"},
         }) {
        CHECK(english.calendarNoteName(filename, today).value_or("") == name);
    }
    CHECK_FALSE(english.calendarNoteName("Plans.txt", today));
    CHECK(english.shortDate(today) == "21 May");
    CHECK(english.dateWithYear(today) == "21 May 2019");
    CHECK(DateStringHelper{base::LocaleFormats("en_US")}.shortDate(today) == "May 21");
    CHECK(DateStringHelper{base::LocaleFormats("en_US")}.time({today, 14, 7}) == "2:07 PM");
    CHECK(DateStringHelper{base::LocaleFormats("de_DE")}.time({today, 14, 7}) == "14:07");
}

TEST_CASE("alerts are told in the largest unit that fits") {
    for (const auto& [minutes, text] : std::vector<std::pair<long, const char*>>{
             {0, "At time of event"},
             {1, "1 minute before"},
             {90, "90 minutes before"},
             {60, "1 hour before"},
             {2880, "2 days before"},
             {20160, "2 weeks before"},
             {-15, "15 minutes after"},
         }) {
        CHECK(DateStringHelper::alertOffset(minutes) == text);
    }
    CHECK(DateStringHelper::recurrence(RecurrenceUnit::weeks, 2) == "Every 2 Weeks");
    CHECK(DateStringHelper::recurrence(RecurrenceUnit::never, 2) == "Never");
}
