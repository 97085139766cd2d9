// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "base/locale_formats.h"
#include "support/on_threads.h"

using namespace tessaly::base;
using namespace std::chrono_literals;

namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST_CASE("each country's days, times and numbers") {
    struct Row {
        const char* locale;
        const char* dayNumber;
        const char* year;  ///< of the Gregorian 2019
        const char* afternoon;
        HourCycle cycle;
        DayOfWeek firstDay;
        const char* number;
    };
    const Row rows[] = {
        {"en_US", "21", "2019", "2:07 PM", HourCycle::twelve, DayOfWeek::sunday, "1,234,567"},
        {"de_DE", "21", "2019", "14:07", HourCycle::twentyFour, DayOfWeek::monday, "1.234.567"},
        {"th_TH", "21", "2562", "14:07", HourCycle::twentyFour, DayOfWeek::sunday, "1,234,567"},
        {"ar_EG", "٢١", "٢٠١٩", "٢:٠٧ PM", HourCycle::twelve, DayOfWeek::saturday, "١٬٢٣٤٬٥٦٧"},
        {"tr_TR", "21", "2019", "14:07", HourCycle::twentyFour, DayOfWeek::monday, "1.234.567"},
        {"ja_JP", "21", "2019", "14:07", HourCycle::twentyFour, DayOfWeek::sunday, "1,234,567"},
        {"en_GB@calendar=buddhist", "21", "2562", "14:07", HourCycle::twentyFour, DayOfWeek::monday,
         "1,234,567"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.locale);
        const LocaleFormats formats(row.locale);
        const Day day = 2019y / 5 / 21;
        for (const char* skeleton : {"EEEdMMM", "dMMMyyyy", "d MMM"}) {
            CHECK(holds(formats.day(day, skeleton), row.dayNumber));
        }
        CHECK(holds(formats.day(day, "dMMMyyyy"), row.year));
        CHECK_FALSE(holds(formats.day(day, "d MMM"), row.year));
        CHECK(formats.time(14, 7) == row.afternoon);
        CHECK(formats.hourCycle() == row.cycle);
        CHECK(formats.firstDayOfWeek() == row.firstDay);
        CHECK(formats.number(1234567) == row.number);
    }
}

TEST_CASE("a date with its time, to the second, in the locale's own order") {
    const LocalTime time{.day = 2019y / 3 / 5, .hour = 14, .minute = 7, .second = 3};
    CHECK(LocaleFormats("en_GB").dateAndTime(time) == "5 Mar 2019, 14:07:03");
    CHECK(LocaleFormats("de_DE").dateAndTime(time) == "05.03.2019, 14:07:03");
    CHECK(holds(LocaleFormats("en_US").dateAndTime(time), "Mar 5, 2019, 2:07:03"));
    CHECK(holds(LocaleFormats("th_TH").dateAndTime(time), "2562"));
}

TEST_CASE("the ends of the halves of a day") {
    const LocaleFormats american("en_US");
    CHECK(american.time(0, 0) == "12:00 AM");
    CHECK(american.time(11, 59) == "11:59 AM");
    CHECK(american.time(12, 0) == "12:00 PM");
    CHECK(LocaleFormats("de_DE").time(0, 5) == "00:05");
}

TEST_CASE("days are Gregorian at all times, in whatever zone the process runs") {
    struct Row {
        Day day;
        const char* american;
        const char* thai;
    };
    const Row rows[] = {
        {2019y / 1 / 1, "Jan 1, 2019", "1 ม.ค. 2562"},
        {1970y / 1 / 1, "Jan 1, 1970", "1 ม.ค. 2513"},
        {1582y / 10 / 10, "Oct 10, 1582", "10 ต.ค. 2125"},
        {1500y / 2 / 28, "Feb 28, 1500", "28 ก.พ. 2043"},
        {9999y / 12 / 31, "Dec 31, 9999", "31 ธ.ค. 10542"},
    };
    for (const auto& row : rows) {
        CHECK(LocaleFormats("en_US").day(row.day, "dMMMyyyy") == row.american);
        CHECK(LocaleFormats("th_TH").day(row.day, "dMMMyyyy") == row.thai);
    }
}

TEST_CASE("an unknown locale shows as the root locale does") {
    const Day day = 2019y / 5 / 21;
    for (const char* name : {"xx_YY", "nonsense", ""}) {
        CHECK(LocaleFormats(name).day(day, "dMMMyyyy") ==
              LocaleFormats("root").day(day, "dMMMyyyy"));
    }
}

TEST_CASE("threads format at the same time") {
    const LocaleFormats formats("fr_FR");
    const std::string expected = formats.day(2019y / 5 / 21, "dMMMyyyy");
    std::vector<std::string> found(4);
    tessaly::tests::onThreads(found.size(), [&](std::size_t thread) {
        for (unsigned i = 1; i <= 21; ++i) {
            found[thread] = formats.day(2019y / 5 / std::chrono::day(i), "dMMMyyyy");
        }
    });
    CHECK(found == std::vector<std::string>(4, expected));
}

TEST_CASE("a day reads the same however many have been written") {
    constexpr int someDays = 40;
    constexpr int manyDays = 800;
    const Day first{std::chrono::year{2019}, std::chrono::January, std::chrono::day{27}};
    for (const char* locale :
         {"en_NZ", "de_AT", "fr_BE", "ca_ES", "ru_UA", "el_CY", "ja_JP@x=y", "zh_SG", "ko_KP",
          "ar_MA", "fa_AF", "fa_IR", "th_TH@x=y", "hi_IN", "mr_IN", "he_IL@calendar=hebrew"}) {
        for (const char* skeleton : {"EEEdMMM", "d MMM", "EEEEdMMMM", "dMMMyyyy"}) {
            const LocaleFormats formats(locale);
            const auto name = [&](int day) {
                return formats.day(addDays(first, day * 9), skeleton);
            };
            std::vector<std::string> before;
            for (int day = 0; day < someDays; ++day) {
                before.push_back(name(day));
            }
            for (int day = 0; day < manyDays; ++day) {
                name(day);
            }
            for (int day = 0; day < someDays; ++day) {
                CAPTURE(locale);
                CHECK(name(day) == before[static_cast<std::size_t>(day)]);
            }
        }
    }
}
