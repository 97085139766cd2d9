// SPDX-License-Identifier: MIT
#include <optional>
#include <string>

#include <doctest/doctest.h>

#include "base/day.h"

using namespace tessaly::base;
using namespace std::chrono_literals;

namespace {

Day dayOf(const char* text) {
    const auto day = dayFromTagText(text);
    REQUIRE_MESSAGE(day.has_value(), text);
    return *day;
}

}  // namespace

TEST_CASE("only days that exist, in exactly their form, are read") {
    struct Row {
        const char* file;
        const char* tag;
        bool read;
    };
    const Row rows[] = {
        {"20190521", "2019-05-21", true},    {"20200229", "2020-02-29", true},
        {"00000101", "0000-01-01", true},    {"99991231", "9999-12-31", true},
        {"20190229", "2019-02-29", false},   {"20191301", "2019-13-01", false},
        {"20190500", "2019-05-00", false},   {"2019052", "2019-5-21", false},
        {"201905211", "2019-05-211", false}, {"2019 521", "2019/05/21", false},
        {"+2190521", "-219-05-21", false},   {"", "", false},
        {"٢٠١٩", "2019-05-٢", false},
    };
    for (const auto& row : rows) {
        CAPTURE(row.file);
        const auto fromFile = dayFromFileText(row.file);
        const auto fromTag = dayFromTagText(row.tag);
        CHECK(fromFile.has_value() == row.read);
        CHECK(fromTag.has_value() == row.read);
        if (fromFile && fromTag) {
            CHECK(*fromFile == *fromTag);
            CHECK(fileText(*fromFile) == row.file);
            CHECK(tagText(*fromTag) == row.tag);
        }
    }
}

TEST_CASE("months keep the day, or end at the month's last") {
    struct Row {
        const char* from;
        int months;
        const char* to;
    };
    const Row rows[] = {
        {"2019-05-21", 1, "2019-06-21"},   {"2019-01-31", 1, "2019-02-28"},
        {"2020-01-31", 1, "2020-02-29"},   {"2020-02-29", 12, "2021-02-28"},
        {"2019-12-15", 1, "2020-01-15"},   {"2020-03-31", -1, "2020-02-29"},
        {"2019-01-01", -13, "2017-12-01"}, {"2019-05-21", 0, "2019-05-21"},
    };
    for (const auto& row : rows) {
        CHECK(tagText(addMonths(dayOf(row.from), row.months)) == row.to);
    }
}

TEST_CASE("a week starts on or before each of its days") {
    struct Row {
        const char* day;
        std::chrono::weekday first;
        const char* start;
    };
    const Row rows[] = {
        {"2019-05-21", std::chrono::Monday, "2019-05-20"},
        {"2019-05-20", std::chrono::Monday, "2019-05-20"},
        {"2019-05-19", std::chrono::Monday, "2019-05-13"},
        {"2019-05-21", std::chrono::Sunday, "2019-05-19"},
        {"2020-01-01", std::chrono::Saturday, "2019-12-28"},
    };
    for (const auto& row : rows) {
        CHECK(tagText(startOfWeek(dayOf(row.day), row.first)) == row.start);
    }
}

TEST_CASE("moving by days and counting them agree across leap years") {
    const Day from = 1999y / 12 / 28;
    for (int count = -800; count <= 800; ++count) {
        const Day to = addDays(from, count);
        REQUIRE(to.ok());
        REQUIRE(daysBetween(from, to) == count);
    }
    CHECK(tagText(addDays(from, 63)) == "2000-02-29");
}
