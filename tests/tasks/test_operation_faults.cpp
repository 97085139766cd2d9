// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "support/log_capture.h"
#include "tasks/runner_fixture.h"

namespace tessaly::tests {
namespace {

/// The scheduling, or its undoing, with the notes as they are without it and with it.
struct Job {
    std::string name;
    bool isUndo;
    Notes open;
    Notes scheduled;

    const Notes& before() const { return isUndo ? scheduled : open; }
    const Notes& after() const { return isUndo ? open : scheduled; }

    void prepare(RunnerFixture& f) const {
        if (isUndo) {
            REQUIRE(f.schedule());
        }
    }

    bool run(RunnerFixture& f) const {
        if (!isUndo) {
            return f.schedule().ok();
        }
        const auto undone = f.undoLast();
        return undone && undone->isComplete && undone->steps.size() == 3;
    }
};

const Job jobs[] = {
    {"make", false, before, after},
    {"undo", true, before, after},
    {"make, new note", false, with(before, target, {}), with(after, target, copy)},
    {"undo, new note", true, with(before, target, {}), with(after, target, copy)},
};

/// After a job was broken off and settled: all or nothing is done, and it can be done then.
void checkWhole(RunnerFixture& f, const Job& job) {
    const std::size_t inJournal = job.isUndo ? 0 : 1;
    CHECK_FALSE(f.process->journal.hasPending());
    if (f.notes() == job.before()) {
        CHECK(f.operations().size() == 1 - inJournal);
        CHECK(job.run(f));
    }
    CHECK(shown(f.notes()) == shown(job.after()));
    CHECK(f.operations().size() == inJournal);
}

// Between two changes it is all the same when a process dies.
bool isChange(std::string_view operation) {
    constexpr std::string_view looks[] = {"list", "read", "readEach", "kindOf", "resolve"};
    return std::find(std::begin(looks), std::end(looks), operation) == std::end(looks);
}

void dieAtChange(RunnerFixture& f, int change) {
    f.failing().before([=, count = 0](int, std::string_view operation, const std::string&) mutable {
        if (isChange(operation) && count++ == change) {
            throw Killed{};
        }
    });
}

/// Whether it came to its end.
template <class Run>
bool survives(const Run& run) {
    try {
        run();
        return true;
    } catch (const Killed&) {
        return false;
    }
}

}  // namespace

TEST_CASE("operation runner: whatever call fails, all or nothing is done and a retry succeeds") {
    for (const Job& job : jobs) {
        bool passed = false;
        for (int call = 0; !passed; ++call) {
            REQUIRE(call < 200);
            CAPTURE(job.name);
            CAPTURE(call);
            RunnerFixture f(job.open);
            job.prepare(f);
            LogCapture log;
            f.failing().failAt(call, Failure::Kind::noSpace);
            const bool done = job.run(f);
            passed = f.failing().calls() <= call;
            f.failing().heal();
            CHECK(log.lines().size() <= 1);
            CHECK((done || log.lines().size() == 1));
            CHECK((!done || f.notes() == job.after()));
            REQUIRE(f.runner().settle());
            checkWhole(f, job);
        }
    }
}

TEST_CASE("operation runner: whenever the process dies, the next one makes it whole") {
    for (const Job& job : jobs) {
        bool passed = false;
        for (int change = 0; !passed; ++change) {
            REQUIRE(change < 100);
            CAPTURE(job.name);
            CAPTURE(change);
            RunnerFixture f(job.open);
            job.prepare(f);
            dieAtChange(f, change);
            passed = survives([&] { job.run(f); });
            f.restart();
            // Notes may change, and the next one may die as well.
            const bool isChanged = job.open.size() == 3;
            f.put(isChanged ? withLineAbove(f.notes()) : Notes());
            dieAtChange(f, change % 7);
            survives([&] { static_cast<void>(f.runner().settle()); });
            f.restart();
            REQUIRE(f.runner().settle());
            checkWhole(f, isChanged ? Job{"", job.isUndo, withLineAbove(job.open),
                                          withLineAbove(job.scheduled)}
                                    : job);
        }
    }
}

TEST_CASE("operation runner: what another program changes meanwhile is kept") {
    struct Row {
        std::string what;
        std::string note;
        std::function<std::string(std::string)> change;
        bool canRefuse;
    };
    const auto above = [](const std::string& text) { return "theirs\n" + text; };
    const auto without = [](const std::string& text) {
        return text == before.at(source) ? "# Day\nend" : text;
    };
    const Row rows[] = {{"line above the task", source, above, false},
                        {"line above the copy", target, above, false},
                        {"line above the earlier copy", earlier, above, false},
                        {"task removed", source, without, true}};
    for (const Row& row : rows) {
        bool passed = false;
        for (int last = 0; !passed; ++last) {
            REQUIRE(last < 100);
            CAPTURE(row.what);
            CAPTURE(last);
            RunnerFixture f;
            bool isTheirs = false;
            f.failing().before(
                [&, count = 0](int, std::string_view, const std::string& path) mutable {
                    if (path == f.folder / ("data/" + row.note) && count++ == last) {
                        isTheirs = true;
                        f.put({{row.note, row.change(f.notes().at(row.note))}});
                    }
                });
            LogCapture log;
            const auto made = f.schedule();
            f.failing().heal();
            passed = !isTheirs;
            Notes expected = made ? after : before;
            if (isTheirs) {
                expected[row.note] = row.change(expected[row.note]);
            }
            CHECK(shown(f.notes()) == shown(expected));
            CHECK(log.lines().empty());
            CHECK((made || (row.canRefuse && made.failure().kind == Failure::Kind::changed)));
            CHECK_FALSE(f.process->journal.hasPending());
            const bool isUndone = !made || f.undoLast().value().isComplete;
            CHECK(isUndone);
            CHECK(f.notes().at(target).find("Call") == std::string::npos);
            CHECK(f.notes().at(earlier).find(copy) != std::string::npos);
        }
    }
}

TEST_CASE("operation runner: what a dead process began and nobody can finish is taken back") {
    for (const std::optional<std::string>& text : {std::optional<std::string>("* Call them"), {}}) {
        RunnerFixture f;
        f.dieBefore("replace", source);
        CHECK_FALSE(survives([&] { static_cast<void>(f.schedule()); }));
        REQUIRE(f.notes().at(target) == after.at(target));
        f.restart();
        std::filesystem::remove(f.folder / ("data/" + source));
        f.put(with({}, source, text));
        LogCapture log;
        REQUIRE(f.runner().settle());
        CHECK(log.lines().size() == (text ? 0 : 1));
        CHECK(shown(f.notes()) == shown(with(before, source, text)));
        CHECK(f.operations().empty());
        CHECK_FALSE(f.process->journal.hasPending());
    }
}

TEST_CASE("operation runner: what a dead process made is told from what others changed") {
    struct Row {
        std::vector<NoteStep> steps;
        Notes meanwhile;      // while the operation is written down
        std::string dyingAt;  // empty: when all is made, but not written down
        Notes later;
        Notes expected;
    };
    const std::string changedTask = "# Day\n* [>] Call them >2020-01-03\nend";
    const std::string changedCopy = "first\n* Call them\n";
    const std::string twice = after.at(target) + copy + "\n";
    const NoteStep notCopied = step(target, {Edit::Kind::remove, 1, 0, copy, "", "", 0});
    const Row rows[] = {
        {{copied(), marked(), removed()},
         {},
         earlier,
         {{target, changedCopy}},
         with(after, target, changedCopy)},
        {{copied(), marked(), notCopied}, {}, target, {}, with(before, source, after.at(source))},
        {{copied(), marked(), removed()},
         {{target, after.at(target)}},
         target,
         {},
         with(after, target, twice)},
        {{copied(), marked()},
         {},
         "",
         {{source, changedTask}},
         with(with(after, source, changedTask), earlier, before.at(earlier))},
    };
    for (const Row& row : rows) {
        CAPTURE(shown(row.expected));
        RunnerFixture f;
        f.failing().before([&](int, std::string_view operation, const std::string& path) {
            if (operation == "create" && path.ends_with("/pending")) {
                f.put(row.meanwhile);
            }
            const bool isLast = row.dyingAt.empty() && operation == "move";
            if (isLast || (operation == "replace" && path == f.folder / ("data/" + row.dyingAt))) {
                throw Killed{};
            }
        });
        CHECK_FALSE(survives([&] { static_cast<void>(f.runner().make(planOf(row.steps))); }));
        f.restart();
        f.put(row.later);
        REQUIRE(f.runner().settle());
        CHECK(shown(f.notes()) == shown(row.expected));
    }
}

TEST_CASE("operation runner: an undoing that a dead process began can be asked for again") {
    const std::string task = "# Day\n* Call\nend\n* Call";
    RunnerFixture f(with(before, source, task));
    const auto made = f.schedule();
    REQUIRE(made);
    f.dieBefore("replace", source);
    CHECK_FALSE(survives([&] { static_cast<void>(f.runner().undo(*made)); }));
    f.restart();
    f.put({{source, "theirs\n" + f.notes().at(source)}});
    const auto undone = f.runner().undo(*made);
    REQUIRE(undone);
    CHECK(undone->isComplete);
    CHECK(shown(f.notes()) == shown(with(before, source, "theirs\n" + task)));
}

TEST_CASE("operation runner: what cannot be settled is settled later, and before a new operation") {
    bool passed = false;
    for (int call = 0; !passed; ++call) {
        REQUIRE(call < 200);
        CAPTURE(call);
        RunnerFixture f;
        f.dieBefore("replace", source);
        CHECK_FALSE(survives([&] { static_cast<void>(f.schedule()); }));
        f.restart();
        LogCapture log;
        f.failing().failAt(call, Failure::Kind::noSpace);
        const bool settled = f.runner().settle().ok();
        passed = f.failing().calls() <= call;
        f.failing().heal();
        CHECK(log.lines().size() == (settled ? 0 : 1));
        const NoteStep later = step(source, {Edit::Kind::append, 0, 0, "", "later", "", 0});
        REQUIRE(f.runner().make(planOf({later})));
        Notes expected = after;
        expected[source] += "\nlater";
        CHECK(shown(f.notes()) == shown(expected));
        CHECK(f.operations().size() == 2);
    }
}

TEST_CASE("operation runner: a pending operation that cannot be read is in nobody's way") {
    RunnerFixture f;
    f.folder.write(f.process->journal.folder().substr(f.folder.path().size()) + "/pending", "?\n");
    LogCapture log;
    REQUIRE(f.schedule());
    CHECK(shown(f.notes()) == shown(after));
    CHECK(log.lines().size() == 1);
}

}  // namespace tessaly::tests
