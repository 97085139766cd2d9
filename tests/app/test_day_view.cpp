// SPDX-License-Identifier: MIT
#include <atomic>

#include <doctest/doctest.h>

#include "app/day_text.h"
#include "app/day_view.h"
#include "app/planner.h"

using namespace tessaly;
using tests::Planner;

namespace {

base::Day day(std::string_view text) {
    return *base::dayFromTagText(text);
}

struct DayRow {
    std::string what;
    std::string notes;
    std::string first;
    int count;
    std::string expected;
};

const DayRow dayRows[] = {
    {"a copy stands for its original; what is overdue stands under today alone",
     "-- Calendar/20190304.txt\n* [>] Call Bob >2019-03-06\n"
     "* [>] Lost copy >2019-03-06\n"
     "* Yesterday's\n"
     "-- Calendar/20190306.txt\n* Call Bob <2019-03-04\n"
     "-- Notes/b.txt\n* Note's >2019-03-01\n",
     "2019-03-04", 3,
     "2019-03-04 yesterday +\n"
     "= scheduled: Call Bob >2019-03-06\n"
     "= scheduled: Lost copy >2019-03-06\n"
     "= open: Yesterday's\n"
     "2019-03-05 today\n"
     "! open: Note's >2019-03-01 (Notes/b.txt:1)\n"
     "! open: Yesterday's (Calendar/20190304.txt:3)\n"
     "2019-03-06 tomorrow +\n"
     "= open: Call Bob <2019-03-04\n"
     "> scheduled: Lost copy >2019-03-06 (Calendar/20190304.txt:2)\n"},
    {"a name that is no day, or lies in a folder, is no day's note",
     "-- Calendar/2019-03-05.txt\n* Stray\n"
     "* Stray, but planned >2019-03-05\n"
     "-- Calendar/20190305.md\n* Markdown\n"
     "-- Calendar/2019/20190305.txt\n* Below\n"
     "-- Calendar/20190305.sync-conflict-20190306-101010-ABCDEFG.txt\n* Conflict\n"
     "-- Notes/20190305.txt\n* General\n",
     "2019-03-05", 1,
     "2019-03-05 today\n"
     "> open: Stray, but planned >2019-03-05 (Calendar/2019-03-05.txt:2)\n"},
    {"what is no UTF-8 is an empty note; a byte-order mark is no text",
     "-- Calendar/20190305.txt\n* caf\xe9\n"
     "-- Calendar/20190306.txt\n\xef\xbb\xbf* Marked\n",
     "2019-03-05", 2,
     "2019-03-05 today +\n"
     "2019-03-06 tomorrow +\n"
     "= open: Marked\n"},
    {"the days of a year's end", "-- Calendar/20200101.txt\n* Rest\n", "2019-12-31", 2,
     "2019-12-31 Tue 31 Dec\n"
     "2020-01-01 Wed 1 Jan +\n"
     "= open: Rest\n"},
};

void check(const DayRow& row) {
    CAPTURE(row.what);
    Planner planner;
    planner.write(row.notes);
    const auto views = app::dayViews(planner.services(), day(row.first), row.count);
    // Whether the locale puts a comma behind the weekday changed between versions of its data.
    std::string text = tests::dayText(views);
    for (const char* name : {"Tue,", "Wed,"}) {
        if (const auto at = text.find(name); at != text.npos) {
            text.erase(at + 3, 1);
        }
    }
    CHECK(text == row.expected);
}

}  // namespace

TEST_CASE("a day shows its own tasks, those planned for it and, today, those overdue") {
    for (const DayRow& row : dayRows) {
        check(row);
    }
}

TEST_CASE("a week begins on the day of the setting, else of the locale") {
    const struct {
        std::string settings;
        std::string locale;
        std::string first;
    } rows[] = {
        {"{}", "en_GB", "2019-03-04"},
        {"{}", "en_US", "2019-03-03"},
        {R"({"firstDayOfWeek": "tuesday"})", "en_GB", "2019-03-05"},
        {R"({"firstDayOfWeek": "wednesday"})", "en_US", "2019-02-27"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.settings);
        Planner::User user;
        user.locale = row.locale;
        Planner planner(user);
        planner.set(row.settings);
        const auto views = app::weekView(planner.services(), day("2019-03-05"));
        REQUIRE(views.days.size() == 7);
        CHECK(base::tagText(views.days.front().day) == row.first);
        CHECK(base::daysBetween(views.days.front().day, views.days.back().day) == 6);
    }
}

TEST_CASE("a reading that is cancelled says so") {
    Planner planner;
    planner.write("-- Calendar/20190304.txt\n* Open\n");
    const std::atomic<bool> cancelled = true;
    store::NoteReader::Options options;
    options.cancelled = &cancelled;
    const auto view = app::overdueView(planner.services(), options);
    CHECK(view.report.cancelled);
    CHECK(view.tasks.empty());
}
