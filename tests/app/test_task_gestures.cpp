// SPDX-License-Identifier: MIT
#include <memory>

#include <doctest/doctest.h>

#include "app/planner.h"
#include "app/stepped_planner.h"
#include "app/task_gestures.h"

using namespace tessaly;
using app::GestureNotice;
using app::TaskGestures;
using app::TaskStep;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n"
    "* Call Bob\n"
    "* [x] Pay @done(2019-03-04 10:00)\n"
    "* Write to a friend whom I have not seen for a very long time, and who may have moved since\n"
    "* Read >2019-03-04\n";

const tasks::NoteName today{base::NoteType::calendar, "20190305.txt"};

std::vector<tasks::TaskReference> linesOf(const std::vector<std::size_t>& indices) {
    std::vector<tasks::TaskReference> lines;
    for (const std::size_t index : indices) {
        lines.push_back({today, index, std::nullopt, tasks::TaskReference::Where::there});
    }
    return lines;
}

/// A planner's gestures, each waited for.
class Gestures {
public:
    explicit Gestures(Planner& planner)
        : _planner(planner), _gestures(std::make_unique<TaskGestures>(planner.services())) {}

    TaskGestures& operator*() { return *_gestures; }

    template <class Ask>
    GestureNotice of(const Ask& ask) {
        std::optional<GestureNotice> notice;
        ask(*_gestures, [&](const GestureNotice& told) { notice = told; });
        REQUIRE(_planner.mainQueue().runPostedUntil([&] { return notice.has_value(); }));
        return *notice;
    }
    GestureNotice change(TaskStep step, const std::vector<std::size_t>& lines) {
        return of([&](auto& gestures, auto told) { gestures.change(step, linesOf(lines), told); });
    }
    GestureNotice schedule(const std::vector<std::size_t>& lines, int days) {
        const base::Day day = base::addDays(_planner.services().today(), days);
        return of([&](auto& gestures, auto told) { gestures.schedule(linesOf(lines), day, told); });
    }
    GestureNotice undo(std::optional<std::uint64_t> operation) {
        return of([&](auto& gestures, auto told) {
            operation ? gestures.undo(*operation, told) : gestures.undoLast(told);
        });
    }

private:
    Planner& _planner;
    std::unique_ptr<TaskGestures> _gestures;
};

struct NoticeRow {
    enum class Do { complete, cancel, reopen, tomorrow, friday } what;
    std::vector<std::size_t> lines;
    bool isFailure;
    const char* text;
};
using Do = NoticeRow::Do;

const NoticeRow noticeRows[] = {
    {Do::complete, {0}, false, "Completed “Call Bob”"},
    {Do::complete, {3}, false, "Completed “Read”"},
    {Do::complete, {0, 1, 3}, false, "Completed 2 tasks"},
    {Do::complete, {1}, true, "“Pay” is done already"},
    {Do::cancel,
     {2},
     false,
     "Cancelled “Write to a friend whom I have not seen for a very long time,…”"},
    {Do::reopen, {1}, false, "Reopened “Pay”"},
    {Do::reopen, {0, 2}, true, "2 tasks are so already"},
    {Do::tomorrow, {0}, false, "Scheduled “Call Bob” to tomorrow"},
    {Do::friday, {0, 3}, false, "Scheduled 2 tasks to Fri, 8 Mar"},
    {Do::friday,
     {0, 1},
     false,
     "Scheduled “Call Bob” to Fri, 8 Mar. 1 task was left as it is: Calendar/20190305.txt:2: a "
     "done "
     "or cancelled task cannot be scheduled"},
    {Do::complete,
     {7},
     true,
     "1 task was left as it is: Calendar/20190305.txt:8: there is no such line"},
};

GestureNotice carryOut(Gestures& gestures, const NoticeRow& row) {
    switch (row.what) {
        case Do::complete: return gestures.change(TaskStep::complete, row.lines);
        case Do::cancel: return gestures.change(TaskStep::cancel, row.lines);
        case Do::reopen: return gestures.change(TaskStep::reopen, row.lines);
        case Do::tomorrow: return gestures.schedule(row.lines, 1);
        case Do::friday: break;
    }
    return gestures.schedule(row.lines, 3);
}

void check(const NoticeRow& row) {
    CAPTURE(row.text);
    Planner planner;
    planner.write(notes);
    const std::string before = planner.textOf("Calendar/20190305.txt");
    Gestures gestures{planner};
    const GestureNotice notice = carryOut(gestures, row);
    CHECK(notice.text == row.text);
    CHECK(notice.isFailure == row.isFailure);
    CHECK(notice.operation.has_value() == !row.isFailure);
    CHECK(notice.notes.empty() == row.isFailure);
    CHECK((planner.textOf("Calendar/20190305.txt") == before) == row.isFailure);
    if (notice.operation) {
        CHECK_FALSE(gestures.undo(notice.operation).isFailure);
        CHECK(planner.textOf("Calendar/20190305.txt") == before);
    }
}

}  // namespace

TEST_CASE("a gesture is made, told in the user's words, and can be taken back") {
    for (const NoticeRow& row : noticeRows) {
        check(row);
    }
}

TEST_CASE("only the newest operation is undone, and what that leaves is told") {
    Planner planner;
    planner.write(notes);
    Gestures gestures{planner};
    CHECK(gestures.undo(std::nullopt).text == "There is nothing to undo");
    const auto first = gestures.change(TaskStep::complete, {0}).operation;
    const auto second = gestures.schedule({2, 3}, 3);
    CHECK(second.notes.size() == 2);
    const auto tooLate = gestures.undo(first);
    CHECK(tooLate.isFailure);
    CHECK(tooLate.text == "Not undone: something else was changed since");
    const auto undone = gestures.undo(second.operation);
    CHECK(undone.text ==
          "Undone: scheduled “Write to a friend whom I have not seen for a very long time,…” and 1 "
          "more. Undoing a scheduling also removes the task's copy in the other day's note.");
    CHECK(undone.notes.size() == 2);
    CHECK(planner.textOf("Calendar/20190308.txt") == "-");
    CHECK(gestures.undo(second.operation).text == "That has been undone already");
    CHECK(gestures.undo(std::nullopt).text == "Undone: completed “Call Bob”");
}

TEST_CASE("tasks of different days that go on together are one operation, and one notice") {
    Planner planner;
    planner.write(notes);
    const std::string before = planner.textOf("Calendar/20190305.txt");
    Gestures gestures{planner};
    const base::Day day = planner.services().today();
    const GestureNotice notice = gestures.of([&](auto& all, auto told) {
        all.schedule(
            {{base::addDays(day, 1), linesOf({0})}, {base::addDays(day, 3), linesOf({2, 3})}},
            told);
    });
    CHECK(notice.text == "Scheduled 3 tasks to several days");
    CHECK(notice.notes.size() == 3);
    CHECK(planner.textOf("Calendar/20190306.txt") == "* Call Bob <2019-03-05");
    CHECK(planner.textOf("Calendar/20190308.txt") != "-");
    const auto undone = gestures.undo(notice.operation);
    CHECK(undone.text.starts_with("Undone: scheduled “Call Bob” and 2 more"));
    CHECK(planner.textOf("Calendar/20190305.txt") == before);
    CHECK(planner.textOf("Calendar/20190306.txt") == "-");
    CHECK(planner.textOf("Calendar/20190308.txt") == "-");
    CHECK(gestures.undo(std::nullopt).text == "There is nothing to undo");
}

TEST_CASE("what is done goes to the note's archive, and comes back") {
    Planner planner;
    planner.write(notes);
    const std::string before = planner.textOf("Calendar/20190305.txt");
    Gestures gestures{planner};
    const auto archive = [&] {
        return gestures.of([&](auto& all, auto told) { all.archive(today, told); });
    };
    const GestureNotice notice = archive();
    CHECK(notice.text == "Archived the processed tasks of this note.");
    CHECK(planner.textOf("Calendar/20190305.txt").find("## Archive") != std::string::npos);
    const GestureNotice again = archive();
    CHECK(again.isFailure);
    CHECK(again.text == "There is nothing to archive in this note.");
    CHECK_FALSE(gestures.undo(notice.operation).isFailure);
    CHECK(planner.textOf("Calendar/20190305.txt") == before);
}

TEST_CASE("the list shows a gesture at once, and the next ones wait their turn") {
    Planner planner;
    planner.write(notes);
    store::NoteCache& cache = planner.services().noteCache();
    cache.load();
    cache.waitUntilIdle();
    Gestures gestures{planner};
    int told = 0;
    for (const std::size_t line : {0U, 2U, 3U}) {
        (*gestures).change(TaskStep::cancel, linesOf({line}),
                           [&](const GestureNotice& notice) { told += notice.isFailure ? 0 : 1; });
    }
    REQUIRE(planner.mainQueue().runPostedUntil([&] { return told == 3; }));
    cache.waitUntilIdle();
    const auto known = cache.knownText(base::NoteType::calendar, "20190305.txt");
    REQUIRE(known);
    CHECK(std::string{known->text.view()} == planner.textOf("Calendar/20190305.txt"));
}

TEST_CASE("a gesture that was asked for is made though nobody waits for it any more") {
    tests::SteppedPlanner planner;
    planner.write("Calendar/20190305.txt", "* Call Bob\n");
    auto gestures = std::make_unique<TaskGestures>(planner.services());
    int told = 0;
    gestures->change(TaskStep::cancel, linesOf({0}), [&](const GestureNotice&) { ++told; });
    gestures.reset();
    planner.settle();
    CHECK(planner.textOf("Calendar/20190305.txt") == "* [-] Call Bob\n");
    CHECK(told == 0);
}
