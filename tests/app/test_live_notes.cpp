// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "app/live_notes.h"
#include "app/note_lists.h"
#include "app/planner.h"

using namespace tessaly;
using namespace std::chrono_literals;
using tests::Planner;
using tests::TempFolder;

namespace {

/// A program that stays. Its work is done when time passes, on this thread.
class Program {
public:
    explicit Program(Planner::User user = {}) : _planner(threadless(std::move(user))) {}

    Planner& planner() { return _planner; }

    void start() {
        _live.emplace(
            _planner.services(),
            app::LiveNotes::Handlers{[this] { _told += "ready\n"; },
                                     [this](const store::CloudBatch& batch) { tell(batch); },
                                     [this] { _told += "watching changed\n"; },
                                     {}});
        _live->start();
        pass(10s);
    }

    void end() { _live.reset(); }
    void pass(std::chrono::seconds time) { _planner.mainQueue().advance(time); }

    /// Another program writes a note.
    void write(const std::string& filename, const char* text) {
        _planner.folder().write(std::string{Planner::root} + filename, text);
        _planner.query().notice(filename);
        pass(2s);
    }

    /// What it was told since it was asked last, and, behind a batch, the tasks that a list held
    /// then.
    std::string told() { return std::exchange(_told, {}); }

private:
    static Planner::User threadless(Planner::User user) {
        user.isThreaded = false;
        return user;
    }

    void tell(const store::CloudBatch& batch) {
        for (const store::CloudNote& note : batch.notes) {
            _told += note.filename + " ";
        }
        const auto all = app::listTasks(_planner.services(), app::NoteScope::all, {});
        for (const store::NoteTask& task : all.tasks) {
            _told += "[" + task.todo.content + "]";
        }
        _told += "\n";
    }

    Planner _planner;
    std::string _told;
    std::optional<app::LiveNotes> _live;
};

}  // namespace

TEST_CASE("who is told of a change finds it in memory, and is told nothing of what was there") {
    Program program;
    program.planner().write("-- Notes/Plans.txt\n* Plan\n-- Calendar/20190304.txt\n");
    program.start();
    CHECK(program.told() == "ready\n");
    program.write("Notes/New.txt", "* New\n");
    CHECK(program.told() == "New.txt [New][Plan]\n");
    program.write("Calendar/20190305.txt", "* Today\n");
    CHECK(program.told() == "20190305.txt [Today][New][Plan]\n");
}

TEST_CASE("an empty folder is ready, too") {
    Program program;
    program.planner().write("-- .nothing\n");
    program.start();
    CHECK(program.told() == "ready\n");
}

TEST_CASE("in test mode nothing is watched") {
    Program program{{.isTestMode = true}};
    program.start();
    program.write("Notes/New.txt", "* New\n");
    CHECK(program.told() == "ready\n");
    CHECK_FALSE(program.planner().query().isRunning());
}

TEST_CASE("nothing is told any more once it has ended") {
    Program program;
    program.start();
    program.planner().folder().write(std::string{Planner::root} + "Notes/Late.txt", "* Late\n");
    program.planner().query().notice("Notes/Late.txt");
    program.end();
    program.told();
    program.pass(60s);
    CHECK(program.told() == "");
    CHECK(program.planner().mainQueue().timers() == 0);
}

TEST_CASE("the last repeat that arrives as done is finished, once") {
    const char* const there = "* [x] Water @repeat(2/2) @done(2019-03-05)\n";
    const std::string finished = "* [x] Water @repeat(2/2) @done(2019-03-05) @final-repeat\n";
    Program program;
    program.planner().write(std::string{"-- Calendar/20190304.txt\n"} + there);
    program.start();
    CHECK(program.planner().textOf("Calendar/20190304.txt") == there);

    program.write("Calendar/20190305.txt", there);
    CHECK(program.planner().textOf("Calendar/20190305.txt") == finished);
    program.planner().query().notice("Calendar/20190305.txt");
    program.pass(10s);
    CHECK(program.planner().textOf("Calendar/20190305.txt") == finished);
    const auto day = base::dayFromFileText("20190305").value();
    const auto held = program.planner().services().noteCache().calendarNotes()->find(day);
    REQUIRE(held);
    CHECK(held->content.view() == finished);

    program.write("Calendar/20190306.txt", "* [x] Water @repeat(1/2) @done(2019-03-05)\n");
    CHECK(program.planner().textOf("Calendar/20190306.txt") ==
          "* [x] Water @repeat(1/2) @done(2019-03-05)\n");
}

TEST_CASE("a setting that is changed outside counts the notes anew") {
    Program program;
    program.planner().write("-- Calendar/20190305.txt\n* One\n- Two\n");
    program.start();
    const auto open = [&] {
        const auto day = base::dayFromFileText("20190305").value();
        return program.planner()
            .services()
            .noteCache()
            .calendarNotes()
            ->find(day)
            ->model.numOpenTodos;
    };
    CHECK(open() == 1);
    program.planner().set(R"({"isDashTodo": true})");
    program.pass(app::LiveNotes::settingsInterval);
    CHECK(open() == 2);
}

TEST_CASE("the offer to move the notes comes when the cloud drive is there, once") {
    const TempFolder cloud;
    cloud.write("Documents/.nothing", "");
    Program program{{.cloudContainer = cloud.path(), .answer = 1}};
    program.start();
    CHECK(program.planner().questions().empty());
    program.planner().write("-- Notes/Plans.txt\nplans\n");
    program.pass(60s);
    CHECK(program.planner().questions().size() == 1);
}

TEST_CASE("a program that stays has the start-up index written once all is loaded") {
    for (const int notes : {999, 1000}) {
        CAPTURE(notes);
        Program program;
        for (int note = 0; note < notes; ++note) {
            program.planner().folder().write(
                std::string{Planner::root} + "Notes/" + std::to_string(note) + ".txt", "* Plan\n");
        }
        program.start();
        program.pass(60s);
        CHECK(program.planner().started().size() == (notes < 1000 ? 0U : 1U));
        program.end();
    }
}
