// SPDX-License-Identifier: MIT
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "search/default_list.h"
#include "search/item_rows.h"

using namespace tessaly;
using namespace tessaly::search;
using namespace std::chrono_literals;

namespace {

constexpr base::Day today = 2019y / 3 / 5;

base::Day daysFromNow(int count) {
    return base::addDays(today, count);
}

SearchedNote noteOf(std::string_view text, std::string_view foldedText,
                    const std::vector<TaskPlace>& tasks) {
    SearchedNote note;
    note.type = base::NoteType::note;
    note.text = text;
    note.foldedText = foldedText;
    note.tasks = tasks;
    return note;
}

std::vector<std::string> inbox(std::string_view text) {
    grammar::NoteScanner scanner;
    const std::string copy = needsFolding(text) ? folded(text) : std::string();
    const std::string_view foldedText = copy.empty() ? text : copy;
    const auto tasks = tasksOf(text, foldedText, {}, scanner);
    const NoteMatches matches = inboxOf(noteOf(text, foldedText, tasks));
    CHECK(matches.rows == matches.lines.size());
    CHECK(matches.taskRows == matches.lines.size());
    std::vector<std::string> lines;
    for (const LineMatch& line : matches.lines) {
        lines.push_back(
            std::to_string(line.lineIndex) + " " +
            std::string(foldedText.substr(line.line.start, line.line.end - line.line.start)));
    }
    return lines;
}

calendar::CachedCalendarItem item(std::string title, std::vector<int> days,
                                  ports::CalendarItem calendarItem = {}) {
    calendar::CachedCalendarItem made;
    made.identifier = "id";
    made.title = std::move(title);
    for (const int day : days) {
        made.occuranceDates.push_back(daysFromNow(day));
    }
    made.calendarItem = calendarItem;
    return made;
}

std::string rowsOf(const std::vector<calendar::CachedCalendarItem>& items, SearchQuery query,
                   FilterConditions filter = {}) {
    std::string text;
    for (const FoundItem& found :
         findItems(items, NoteMatcher({std::move(query)}, std::move(filter)), today)) {
        text += found.item->title + std::to_string(base::daysBetween(today, found.day)) + " ";
    }
    return text;
}

}  // namespace

TEST_CASE("lists are called by name in any case") {
    CHECK(defaultListCalled("recent") == DefaultList::recent);
    CHECK(defaultListCalled(" InBox ") == DefaultList::inbox);
    CHECK(defaultListCalled("in box") == DefaultList::none);
    CHECK(defaultListCalled("") == DefaultList::none);
}

TEST_CASE("the inbox holds open tasks of general notes that name no day") {
    const std::string dated =
        "* a >2019-03-05\n* b <2019-03-05\n* c >today\n* d @done(2019-03-05)\n- [>] e\n* [x] "
        "f\ng\n";
    CHECK(inbox(dated + "* h @bob #x > y\n\t* i\r\n* j") ==
          std::vector<std::string>{"2 * c >today", "7 * h @bob #x > y", "8 \t* i\r", "9 * j"});
    // Folding makes this text longer, and a completion tag of what is none.
    CHECK(inbox("\u0130\u0130\n* \u0130 @DONE(2019-03-05)\n* b >2019-03-05\n* c") ==
          std::vector<std::string>{"1 * i\u0307 @done(2019-03-05)", "3 * c"});
    SearchedNote calendar = noteOf("* a", "* a", {});
    calendar.type = base::NoteType::calendar;
    std::vector<TaskPlace> tasks(1);
    tasks[0].type = static_cast<unsigned>(grammar::TodoType::open) & 0xF;
    calendar.tasks = tasks;
    CHECK(inboxOf(calendar).rows == 0);
}

TEST_CASE("the newest notes are kept, in whatever order and by how many they are met") {
    struct Met {
        int modified;
        base::NoteType type;
        std::string filename;

        NoteAge age() const {
            return {base::Instant(std::chrono::seconds(modified)), type, filename};
        }
    };
    using enum base::NoteType;
    const std::vector<Met> inOrder{{9, calendar, "20190301.txt"},
                                   {8, note, "B.txt"},
                                   {8, note, "a.txt"},
                                   {8, calendar, "20190302.txt"},
                                   {8, calendar, "20190303.txt"},
                                   {7, note, "c.txt"},
                                   {-1, note, "d.txt"}};
    std::mt19937 random(5);
    for (std::size_t most = 0; most <= inOrder.size() + 1; ++most) {
        std::vector<Met> met = inOrder;
        std::shuffle(met.begin(), met.end(), random);
        NewestNotes<std::string> kept(most);
        NewestNotes<std::string> others(most);
        for (const Met& one : met) {
            (random() % 2 == 0 ? kept : others).add(one.age(), one.filename);
        }
        kept.join(std::move(others));
        std::vector<std::string> expected;
        for (std::size_t i = 0; i < std::min(most, inOrder.size()); ++i) {
            expected.push_back(inOrder[i].filename);
        }
        CHECK(kept.take() == expected);
    }
}

TEST_CASE("events and reminders are shown once, on the day that is wanted next") {
    using Kind = ports::CalendarItem::Kind;
    struct Row {
        std::vector<int> days;
        DayRange asked;
        std::string expected;
    };
    const auto from = [](int day) { return DayRange{daysFromNow(day), {}}; };
    const auto until = [](int day) { return DayRange{{}, daysFromNow(day)}; };
    for (const Row& row : std::vector<Row>{
             {{-7, 0, 7}, {}, "x0 "},
             {{-7, 3, 7}, {}, "x3 "},
             {{-9, -7}, {}, "x-7 "},
             {{-366, 366}, {}, ""},
             {{-365, 366}, {}, "x-365 "},
             {{365}, {}, "x365 "},
             {{-7, 0, 7}, from(1), "x7 "},
             {{-7, 0, 7}, until(-1), "x-7 "},
             {{-7, 7}, {daysFromNow(-1), daysFromNow(1)}, ""},
             {{}, {}, ""},
         }) {
        SearchQuery query;
        query.days = row.asked;
        CHECK(rowsOf({item("x", row.days)}, query) == row.expected);
    }

    const auto at = [](int hour, bool isAllDay = false) {
        return ports::CalendarItem{Kind::event, base::LocalTime{today, hour}, isAllDay, false};
    };
    const std::vector<calendar::CachedCalendarItem> items{
        item("rem", {-1}, {Kind::reminder, base::LocalTime{today, 1}, false, false}),
        item("late", {2}, at(20)),
        item("b", {2}, at(8)),
        item("a", {2}, at(8)),
        item("all", {2}, at(23, true)),
        item("first", {1}, at(23)),
    };
    CHECK(rowsOf(items, {}) == "first1 all2 a2 b2 late2 rem-1 ");
    SearchQuery text;
    text.text = "a";
    CHECK(rowsOf(items, text) == "all2 a2 late2 ");
    FilterConditions reminders;
    reminders.isActive = true;
    reminders.eventItem = false;
    CHECK(rowsOf(items, {}, reminders) == "rem-1 ");
    FilterConditions events;
    events.isActive = true;
    events.reminderItem = false;
    CHECK(rowsOf(items, {}, events) == "first1 all2 a2 b2 late2 ");
    SearchQuery ofTasks;
    ofTasks.kinds = LineKinds::tasks();
    SearchQuery ofFolder;
    ofFolder.folders = {"work"};
    SearchQuery ofTitle;
    ofTitle.titles = {"a"};
    for (const SearchQuery& query : {ofTasks, ofFolder, ofTitle}) {
        CHECK(rowsOf(items, query).empty());
    }
}
