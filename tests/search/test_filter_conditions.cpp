// SPDX-License-Identifier: MIT
#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "base/day.h"
#include "search/filter_conditions.h"

using namespace tessaly;
using base::DayOfWeek;
using search::DayRange;
using search::Filter;
using search::FilterItem;
using search::FilterTimeframe;
using Param = search::FilterParamater;

namespace {

using namespace std::chrono_literals;

constexpr base::Day someTuesday{2019y, std::chrono::March, 5d};

std::string textOf(const DayRange& days) {
    return (days.first ? base::tagText(*days.first) : "") + ".." +
           (days.last ? base::tagText(*days.last) : "");
}

/// "open done", "+ notes calendar", the days and the keyword: what a row of a table can name.
std::string describe(const search::FilterConditions& conditions) {
    using grammar::TodoType;
    std::string result;
    const auto add = [&result](bool isOn, std::string_view name) {
        result.append(isOn ? name : "-");
    };
    add(conditions.kinds.has(TodoType::open), "o");
    add(conditions.kinds.has(TodoType::done), "d");
    add(conditions.kinds.has(TodoType::scheduled), "s");
    add(conditions.kinds.has(TodoType::cancelled), "c");
    add(conditions.kinds.hasOther(), "t");
    result += " ";
    add(conditions.noteItem, "n");
    add(conditions.calendarItem, "c");
    add(conditions.eventItem, "e");
    add(conditions.reminderItem, "r");
    return result + " " + textOf(conditions.days) + " " + conditions.keyword;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string all;
    for (const std::string& line : lines) {
        all.append(all.empty() ? "" : "\n").append(line);
    }
    return all;
}

FilterItem timeframe(std::string value) {
    return FilterItem(Param::timeframe, std::move(value));
}

}  // namespace

TEST_CASE("a timeframe is a range of days") {
    struct Row {
        FilterTimeframe timeframe;
        base::Day today;
        DayOfWeek firstDayOfWeek;
        std::string_view days;
    };
    using enum FilterTimeframe;
    using enum DayOfWeek;
    const base::Day newYear{2020y, std::chrono::January, 1d};
    const base::Day endOfMarch{2020y, std::chrono::March, 31d};
    const std::array<Row, 15> rows{{
        {thisWeek, someTuesday, monday, "2019-03-04..2019-03-10"},
        {thisWeek, someTuesday, sunday, "2019-03-03..2019-03-09"},
        {thisWeek, someTuesday, DayOfWeek::tuesday, "2019-03-05..2019-03-11"},
        {lastWeek, someTuesday, wednesday, "2019-02-20..2019-02-26"},
        {nextWeek, someTuesday, saturday, "2019-03-09..2019-03-15"},
        {thisWeek, newYear, monday, "2019-12-30..2020-01-05"},
        {thisMonth, someTuesday, monday, "2019-03-01..2019-03-31"},
        {lastMonth, endOfMarch, monday, "2020-02-01..2020-02-29"},
        {nextMonth, endOfMarch, monday, "2020-04-01..2020-04-30"},
        {lastMonth, newYear, monday, "2019-12-01..2019-12-31"},
        {nextMonth, base::addDays(newYear, -1), monday, "2020-01-01..2020-01-31"},
        {past, newYear, monday, "..2019-12-31"},
        {future, base::addDays(newYear, -1), monday, "2020-01-01.."},
        {allTime, someTuesday, monday, ".."},
        {custom, someTuesday, monday, ".."},
    }};
    for (const Row& row : rows) {
        CAPTURE(base::rawValue(row.timeframe));
        CHECK(textOf(search::daysOf(row.timeframe, row.today, row.firstDayOfWeek)) == row.days);
    }
}

TEST_CASE("weeks and months follow each other without a gap") {
    using enum FilterTimeframe;
    for (int i = 0; i < 1500; ++i) {
        const base::Day today = base::addDays(someTuesday, i);
        const auto first = static_cast<DayOfWeek>(i % 7);
        CAPTURE(base::tagText(today));
        for (const auto& [before, now, behind] : {std::array{lastWeek, thisWeek, nextWeek},
                                                  std::array{lastMonth, thisMonth, nextMonth}}) {
            const DayRange last = search::daysOf(before, today, first);
            const DayRange current = search::daysOf(now, today, first);
            const DayRange next = search::daysOf(behind, today, first);
            REQUIRE(current.holds(today));
            REQUIRE(base::addDays(*last.last, 1) == *current.first);
            REQUIRE(base::addDays(*current.last, 1) == *next.first);
            // The last range's own days see the present one as the next.
            REQUIRE(search::daysOf(behind, *last.first, first) == current);
            REQUIRE(search::daysOf(before, *next.last, first) == current);
        }
        const DayRange week = search::daysOf(thisWeek, today, first);
        REQUIRE(std::chrono::weekday(std::chrono::sys_days(*week.first)) == base::toWeekday(first));
    }
}

TEST_CASE("what a filter names is what passes") {
    const FilterItem custom = timeframe("fptf_custom");
    const FilterItem start(Param::startDate, "2019-01-02");
    const FilterItem end(Param::endDate, " 2019-02-03 ");
    struct Row {
        Filter filter;
        std::string_view expected;
    };
    const std::array<Row, 18> rows{{
        {{}, "odsc- ncer .. "},
        {{FilterItem(Param::open)}, "o---- ---- .. "},
        {{FilterItem(Param::open, "", false)}, "o---- ---- .. "},
        {{FilterItem(Param::canceled), FilterItem(Param::scheduled)}, "--sc- ---- .. "},
        {{FilterItem(Param::noStatus), FilterItem(Param::noteItem)}, "----t n--- .. "},
        {{FilterItem(Param::calendarItem)}, "----- -c-- .. "},
        {{FilterItem(Param::eventItem), FilterItem(Param::done)}, "-d--- --e- .. "},
        {{FilterItem(Param::reminderItem)}, "----- ---r .. "},
        {{FilterItem(Param::keyword, " Bob ")}, "odsc- ncer .. Bob"},
        {{FilterItem(Param::keyword, "Bob"), FilterItem(Param::open)}, "o---- ---- .. Bob"},
        {{timeframe("fptf_past")}, "odsc- ncer ..2019-03-04 "},
        {{timeframe("fptf_thisWeek"), start, end}, "odsc- ncer 2019-03-03..2019-03-09 "},
        {{timeframe("fptf_never"), start}, "odsc- ncer .. "},
        {{custom, start, end}, "odsc- ncer 2019-01-02..2019-02-03 "},
        {{custom, end}, "odsc- ncer ..2019-02-03 "},
        {{start}, "odsc- ncer 2019-01-02.. "},
        {{custom, FilterItem(Param::startDate, "20190102"), FilterItem(Param::endDate, "")},
         "odsc- ncer .. "},
        {{timeframe("fptf_past"), custom, start}, "odsc- ncer 2019-01-02.. "},
    }};
    for (const Row& row : rows) {
        const auto conditions = search::conditionsOf(row.filter, someTuesday, DayOfWeek::sunday);
        CAPTURE(row.expected);
        CHECK(describe(conditions) == row.expected);
        CHECK(conditions.isActive == !row.filter.empty());
    }
}

TEST_CASE("what a filter lets pass is told in words") {
    const auto told = [](const Filter& filter) {
        return joined(
            search::explainFilter(search::conditionsOf(filter, someTuesday, DayOfWeek::monday)));
    };
    CHECK(told({}).empty());
    CHECK(told({timeframe("fptf_thisWeek"), FilterItem(Param::keyword, "{bob}")}) ==
          "tasks, in any state\n"
          "of notes, events and reminders: general notes, calendar notes, events, reminders\n"
          "from 2019-03-04 to 2019-03-10\n"
          "with the keyword “{bob}”");
    CHECK(told({FilterItem(Param::noStatus)}) ==
          "no tasks\n"
          "lines that are no tasks, each by itself\n"
          "neither notes nor events nor reminders");
    CHECK(told({FilterItem(Param::done), FilterItem(Param::open), FilterItem(Param::eventItem)}) ==
          "tasks in these states: open, done\n"
          "of notes, events and reminders: events");
    const std::string all =
        "tasks, in any state\n"
        "of notes, events and reminders: general notes, calendar notes, events, reminders\n";
    struct Row {
        Filter filter;
        std::string expected;
    };
    const FilterItem noDay(Param::startDate, "2019-13-01");
    for (const Row& row : std::vector<Row>{
             {{FilterItem(Param::keyword, " #Work ")},
              "lines that carry “#work”, or, if none does, hold it in their text"},
             {{timeframe("bogus"), noDay}, "no timeframe is called “bogus”, so all days are meant"},
             {{noDay, FilterItem(Param::endDate, "2019-03-05")},
              "on 2019-03-05 or earlier\n"
              "the first day “2019-13-01” is no day, so none is too early"},
             {{timeframe("fptf_custom"), FilterItem(Param::endDate, "{}")},
              "the last day “{}” is no day, so none is too late"}}) {
        CHECK(told(row.filter) == all + row.expected);
    }
    CHECK(told({timeframe("fptf_past"), noDay}) == all + "on 2019-03-04 or earlier");
}
