// SPDX-License-Identifier: MIT
#include <filesystem>
#include <random>

#include <doctest/doctest.h>

#include "app/day_pane.h"
#include "app/day_range_words.h"
#include "app/day_view.h"
#include "app/planner.h"
#include "app/stepped_planner.h"

using namespace tessaly;
using app::DayPane;
using app::WeekAgenda;
using tests::Planner;

namespace {

using namespace std::chrono_literals;

constexpr base::Day tuesday{std::chrono::year{2019}, std::chrono::March, std::chrono::day{5}};

std::string textOf(const std::vector<store::NoteTask>& tasks) {
    std::string text;
    for (const store::NoteTask& task : tasks) {
        text += task.todo.filename + ":" + std::to_string(task.todo.lineIndex) + " " +
                task.todo.title + "|" + task.todo.base + "|" +
                (task.day ? base::tagText(*task.day) : "") + "\n";
    }
    return text;
}

std::string textOf(const DayPane& pane) {
    return textOf(pane.tasks) + "-- scheduled\n" + textOf(pane.scheduled) + "-- overdue " +
           std::to_string(pane.overdueTotal) + "\n" + textOf(pane.overdue);
}

std::string textOf(const app::DayView& view) {
    return textOf(view.tasks) + "-- scheduled\n" + textOf(view.scheduled) + "-- overdue " +
           std::to_string(view.overdue.total) + "\n" + textOf(view.overdue.tasks);
}

DayPane paneOf(Planner& planner, app::DayViewsFeed& feed, base::Day day) {
    std::optional<DayPane> pane;
    feed.requestDay(day, [&](const DayPane& made) { pane = made; });
    REQUIRE(planner.mainQueue().runPostedUntil([&] { return pane.has_value(); }));
    return *pane;
}

WeekAgenda agendaOf(Planner& planner, app::DayViewsFeed& feed, base::Day day) {
    std::optional<WeekAgenda> agenda;
    feed.requestWeek(day, [&](const WeekAgenda& made) { agenda = made; });
    REQUIRE(planner.mainQueue().runPostedUntil([&] { return agenda.has_value(); }));
    return *agenda;
}

/// A data folder whose notes change at random; many tasks read alike, as copies do.
class ChangingNotes {
public:
    ChangingNotes(Planner& planner, unsigned seed) : _planner(planner), _engine(seed) {
        for (int i = 0; i < 25; ++i) {
            changeOne();
        }
    }

    void changeOne() {
        const auto [type, filename] = drawName();
        const std::string path =
            std::string{Planner::root} + std::string{base::folderName(type)} + "/" + filename;
        if (draw(6) == 0) {
            std::filesystem::remove(_planner.folder() / path);
        } else {
            _planner.folder().write(path, drawText());
        }
        _planner.services().noteCache().reread(type, filename);
    }

private:
    int draw(int end) { return static_cast<int>(_engine() % static_cast<unsigned>(end)); }
    std::string drawDay() { return base::tagText(base::addDays(tuesday, draw(8) - 4)); }

    std::pair<base::NoteType, std::string> drawName() {
        if (draw(2) == 0) {
            return {base::NoteType::note, std::string(1, static_cast<char>('a' + draw(5))) +
                                              (draw(3) == 0 ? ".md" : ".txt")};
        }
        std::string day = drawDay();
        std::erase(day, '-');
        return {base::NoteType::calendar, (draw(8) == 0 ? "2019-3-x" + day.substr(7) : day) +
                                              (draw(5) == 0 ? ".md" : ".txt")};
    }

    std::string drawText() {
        std::string text = draw(3) == 0 ? "# Title " + std::to_string(draw(3)) + "\n" : "";
        for (int lines = draw(7); lines > 0; --lines) {
            constexpr const char* boxes[] = {"", "[ ] ", "[x] ", "[-] ", "[>] ", "[>] "};
            text += std::string("* ") + boxes[draw(6)] + "Task " + std::to_string(draw(3));
            text += draw(2) == 0 ? " >" + drawDay() : "";
            text += draw(3) == 0 ? " <" + drawDay() : "";
            text += draw(9) == 0 ? "\r\n" : "\n";
        }
        return text;
    }

    Planner& _planner;
    std::mt19937 _engine;
};

void load(Planner& planner) {
    store::NoteCache& cache = planner.services().noteCache();
    cache.load();
    cache.waitUntilIdle();
}

struct RangeRow {
    const char* locale;
    base::Day first;
    base::Day last;
    const char* words;
};

constexpr base::Day monday = tuesday.year() / std::chrono::March / 4;

const RangeRow rangeRows[] = {
    {"en_GB", monday, base::addDays(monday, 6), "4 – 10 March 2019"},
    {"en_GB", base::addDays(monday, 10), base::addDays(monday, 20), "14 – 24 March 2019"},
    {"en_GB", base::addDays(monday, -4), base::addDays(monday, 2), "28 February – 6 March 2019"},
    {"en_GB", base::addDays(monday, 301), base::addDays(monday, 307),
     "30 December 2019 – 5 January 2020"},
    {"en_US", monday, base::addDays(monday, 6), "March 4 – 10, 2019"},
    {"en_US", base::addDays(monday, -4), base::addDays(monday, 2), "February 28 – March 6, 2019"},
    {"de_DE", monday, base::addDays(monday, 6), "4. – 10. März 2019"},
    {"ja_JP", monday, base::addDays(monday, 6), "2019年3月4日 – 2019年3月10日"},
    {"en_GB", monday, monday, "4 March 2019"},
};

}  // namespace

TEST_CASE("the panes tell what the views tell that look at every note, after any changes") {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        CAPTURE(seed);
        Planner planner;
        ChangingNotes notes{planner, seed};
        load(planner);
        app::DayViewsFeed feed{planner.services()};
        for (int change = 0; change < 15; ++change) {
            notes.changeOne();
            planner.services().noteCache().waitUntilIdle();
            const auto agenda = agendaOf(planner, feed, tuesday);
            const auto views = app::weekView(planner.services(), tuesday);
            REQUIRE(agenda.days.size() == views.days.size());
            for (std::size_t i = 0; i < agenda.days.size(); ++i) {
                CHECK(textOf(agenda.days[i]) == textOf(views.days[i]));
            }
        }
    }
}

TEST_CASE("of what is overdue the first are told, and how many there are") {
    Planner planner;
    std::string text;
    for (std::size_t i = 0; i < DayPane::mostOverdue + 5; ++i) {
        text += "* Late " + std::to_string(i) + "\n";
    }
    planner.write("-- Calendar/20190301.txt\n" + text +
                  "-- Calendar/20190228.txt\n* Later still\n");
    load(planner);
    app::DayViewsFeed feed{planner.services()};
    const DayPane pane = paneOf(planner, feed, tuesday);
    CHECK(pane.overdueTotal == DayPane::mostOverdue + 6);
    REQUIRE(pane.overdue.size() == DayPane::mostOverdue);
    CHECK(pane.overdue.front().todo.content == "Later still");
    CHECK(pane.heading + "|" + pane.relative == "Tuesday, 5 March|today");
    const DayPane friday = paneOf(planner, feed, base::addDays(tuesday, -365));
    CHECK(friday.heading + "|" + friday.relative == "Monday, 5 March 2018|");
    CHECK(friday.overdueTotal == 0);
    planner.set(R"({"isAsteriskTodo": false, "isDashTodo": true})");
    CHECK(agendaOf(planner, feed, tuesday).heading == "Week 10 · 4 – 10 March 2019");
}

TEST_CASE("a newer request takes the place of an older one, and none is answered at the end") {
    tests::SteppedPlanner planner;
    auto feed = std::make_unique<app::DayViewsFeed>(planner.services());
    std::string told;
    const auto tell = [&](const DayPane& pane) { told += base::tagText(pane.day) + "\n"; };
    feed->requestDay(tuesday, tell);
    feed->requestWeek(tuesday, [&](const WeekAgenda&) { told += "week\n"; });
    while (planner.step()) {
    }
    feed->requestDay(base::addDays(tuesday, 1), tell);
    feed->requestDay(base::addDays(tuesday, 2), tell);
    planner.settle();
    CHECK(told == "week\n2019-03-07\n");
    feed->requestDay(tuesday, tell);
    feed.reset();
    planner.settle();
    CHECK(told == "week\n2019-03-07\n");
}

TEST_CASE("days in a row are told in the locale's order, with what they share told once") {
    for (const RangeRow& row : rangeRows) {
        CAPTURE(row.locale);
        CHECK(app::dayRangeWords(row.first, row.last, base::LocaleFormats{row.locale}) ==
              row.words);
    }
}
