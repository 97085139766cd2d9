// SPDX-License-Identifier: MIT
#include <atomic>

#include <doctest/doctest.h>

#include "app/planner.h"
#include "app/task_address.h"
#include "app/task_changes.h"
#include "app/undo_changes.h"

using namespace tessaly;
using app::TaskStep;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n"
    "* Call Bob\n"
    "* Pay\n"
    "-- Notes/Work/Plans.txt\n"
    "# Meeting 14:30\n"
    "* Write\n";

struct NameRow {
    const char* name;
    const char* meant;  // the note and, from 0, the line; or how the refusal begins
};

const NameRow nameRows[] = {
    {"today:1", "Calendar/20190305.txt 0"},
    {" 2019-03-05:2 ", "Calendar/20190305.txt 1"},
    {"Work/Plans:999999999", "Notes/Work/Plans.txt 999999998"},
    {"meeting 14:30:2", "Notes/Work/Plans.txt 1"},
    {"Meeting 14:30", "Notes/Work/Plans.txt -"},
    {"Meeting 15:30", "there is no note called “Meeting 15”"},
    {"today", "Calendar/20190305.txt -"},
    {"today:", "“today:”: “” is no line; lines are numbers from 1"},
    {"today:2,3", "“today:2,3”: “2,3” is no line; lines are numbers from 1"},
    {"nope:-1", "there is no note called “nope:-1”"},
    {"today:0", "“today:0”: there is no line 0"},
    {"today:1000000000", "“today:1000000000”: there is no line 1000000000"},
};

void check(app::TaskFinder& finder, const NameRow& row) {
    CAPTURE(row.name);
    const auto address = finder.find(row.name);
    const std::string meant = row.meant;
    if (!address) {
        CHECK(address.failure().description.substr(0, meant.size()) == meant);
        return;
    }
    const auto line = address->lineIndex;
    CHECK(std::string{base::folderName(address->note.type)} + "/" + address->note.filename + " " +
              (line ? std::to_string(*line) : "-") ==
          meant);
}

std::string titlesOf(const std::vector<ports::Question>& questions) {
    std::string titles;
    for (const ports::Question& question : questions) {
        titles += question.title + "|" + std::to_string(question.buttons.size()) + "\n";
    }
    return titles;
}

}  // namespace

TEST_CASE("a line is named by its note and its number behind the last colon") {
    Planner planner;
    planner.write(notes);
    app::TaskFinder finder{planner.services(), {}};
    for (const NameRow& row : nameRows) {
        check(finder, row);
    }
}

TEST_CASE("names that are not found keep no other line from being changed, and all is one change") {
    Planner planner;
    planner.write(notes);
    const auto outcome =
        app::changeTasks(planner.services(), TaskStep::cancel,
                         {{"today:2", "today", "2019-03-05:2", "nope:1", "today:1"}, std::nullopt});
    REQUIRE(outcome);
    CHECK(outcome->changes.size() == 2);
    CHECK(outcome->refusals.size() == 2);
    CHECK(planner.textOf("Calendar/20190305.txt") == "* [-] Call Bob\n* [-] Pay\n");
    const auto undone = app::undo(planner.services());
    REQUIRE(undone);
    CHECK(undone->undone.size() == 1);
    CHECK(planner.textOf("Calendar/20190305.txt") == "* Call Bob\n* Pay\n");
}

TEST_CASE("a look-up that is cancelled changes nothing") {
    Planner planner;
    planner.write(notes);
    const std::atomic<bool> cancelled = true;
    store::NoteReader::Options options;
    options.cancelled = &cancelled;
    const auto outcome = app::changeTasks(planner.services(), TaskStep::complete,
                                          {{"today:1", "Meeting 14:30:2"}, std::nullopt}, options);
    REQUIRE_FALSE(outcome);
    CHECK(outcome.failure().kind == base::Failure::Kind::cancelled);
    CHECK(planner.textOf("Calendar/20190305.txt") == "* Call Bob\n* Pay\n");
}

TEST_CASE("what undoing does to copies is told, and explained once") {
    Planner planner;
    planner.write(notes);
    app::Services& services = planner.services();
    const base::Day friday = base::addDays(services.today(), 3);
    const auto scheduleAndUndo = [&] {
        REQUIRE(app::scheduleTasks(services, {{"today:1"}, std::nullopt}, friday));
        REQUIRE(app::undo(services));
    };
    std::string told;
    scheduleAndUndo();
    told += "Undoing a scheduling also removes the task's copy in the other day's note.|0\n";
    CHECK(titlesOf(planner.questions()) == told);
    scheduleAndUndo();
    CHECK(titlesOf(planner.questions()) == told);
    CHECK(planner.textOf("Calendar/20190308.txt") == "-");

    REQUIRE(services.globals().set("isAppendScheduleLinks", "off"));
    scheduleAndUndo();
    told += "The scheduled task in the other day can't be deleted if no date links were added.|0\n";
    CHECK(titlesOf(planner.questions()) == told);
    CHECK(planner.textOf("Calendar/20190308.txt") == "* Call Bob");

    REQUIRE(app::changeTasks(services, TaskStep::complete, {{"today:1"}, std::nullopt}));
    planner.write("-- Calendar/20190305.txt\n* Call Alice\n");
    const auto undone = app::undo(services, 2);
    REQUIRE(undone);
    CHECK(undone->undone.size() == 1);
    CHECK_FALSE(undone->undone.front().undone.isComplete);
    told += "Couldn't fully undo this|0\n";
    CHECK(titlesOf(planner.questions()) == told);
    CHECK(planner.textOf("Calendar/20190305.txt") == "* Call Alice\n");
}
