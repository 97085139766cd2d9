// SPDX-License-Identifier: MIT
// A note that is open while its file gets another name.
#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "app/note_organiser.h"
#include "app/note_typist.h"

using namespace tessaly;
using namespace std::chrono_literals;
using app::NoteOrganiser;
using app::OpenNote;
using app::OrganisedNotes;
using tests::Planner;
using tests::SteppedPlanner;
using Editor = tests::NoteTypist;

namespace {

struct MoveRow {
    const char* what;
    void (*begin)(NoteOrganiser& organiser, const NoteOrganiser::Told& told);
    const char* file;   // that the note has then
    const char* title;  // and its first line
};

const MoveRow moveRows[] = {
    {"renamed",
     [](auto& organiser, const auto& told) {
         organiser.renameNote("Work/Plans.txt", "Aims", told);
     },
     "Notes/Work/Aims.txt", "# Aims\n"},
    {"moved",
     [](auto& organiser, const auto& told) { organiser.moveNote("Work/Plans.txt", "Home", told); },
     "Notes/Home/Plans.txt", "# Plans\n"},
    {"its folder renamed",
     [](auto& organiser, const auto& told) { organiser.renameFolder("Work", "Job", told); },
     "Notes/Job/Plans.txt", "# Plans\n"},
    {"its folder moved",
     [](auto& organiser, const auto& told) { organiser.moveFolder("Work", "Home", told); },
     "Notes/Home/Work/Plans.txt", "# Plans\n"},
};

const app::NoteAddress workPlans{base::NoteType::note, "Work/Plans.txt", std::nullopt};

/// The notes' files, without the one that does nothing.
std::vector<std::string> filesOf(const tests::TempFolder& folder) {
    std::vector<std::string> files;
    for (const auto& [name, text] : folder.everything(std::string(Planner::root) + "Notes")) {
        if (!name.ends_with('/') && !name.ends_with("/Other.txt")) {
            files.push_back("Notes/" + name);
        }
    }
    return files;
}

void checkTypedMeanwhile(const MoveRow& row, unsigned seed) {
    CAPTURE(row.what);
    CAPTURE(seed);
    SteppedPlanner planner{seed};
    planner.write("Notes/Work/Plans.txt", "# Plans\n");
    planner.write("Notes/Home/Other.txt", "");
    Editor editor{planner, workPlans};
    NoteOrganiser organiser{planner.services()};
    std::optional<OrganisedNotes> told;
    row.begin(organiser, [&](const OrganisedNotes& what) { told = what; });
    for (int key = 0; key < 12; ++key) {
        editor.type(editor.text + "x");
        planner.mainQueue().advance(std::chrono::milliseconds(planner.draw(700)));
        for (std::size_t steps = planner.draw(4); steps > 0; --steps) {
            planner.step();
        }
        if (planner.draw(3) == 0) {
            editor.note().reread();
        }
    }
    planner.settle();
    REQUIRE(told);
    REQUIRE_FALSE(told->isFailure);
    CHECK(editor.note().saveNow());
    CHECK(editor.text == std::string(row.title) + std::string(12, 'x'));
    CHECK(editor.gone == 0);
    CHECK(filesOf(planner.folder()) == std::vector<std::string>{row.file});
    CHECK(planner.textOf(row.file) == editor.text);
}

}  // namespace

TEST_CASE("what is typed while the file gets another name is in that file, and in no other") {
    for (const MoveRow& row : moveRows) {
        for (unsigned seed = 1; seed <= 25; ++seed) {
            checkTypedMeanwhile(row, seed);
        }
    }
}

TEST_CASE("a save and a move that meet on two threads leave one file") {
    Planner planner;
    planner.write("-- Notes/Plans.txt\n# Plans\n");
    std::string text = "# Plans\n";
    OpenNote note{
        planner.services(),
        tests::plans,
        {[&] { return text; }, [&](const std::string& merged) { text = merged; }, {}, {}}};
    NoteOrganiser organiser{planner.services()};
    std::string name = "Plans.txt";
    for (int round = 0; round < 60; ++round) {
        std::optional<OrganisedNotes> told;
        organiser.moveNote(name, round % 2 == 0 ? "Home" : "",
                           [&](const OrganisedNotes& what) { told = what; });
        for (int key = 0; key < 4; ++key) {
            text += "x";
            note.edited();
            REQUIRE(note.saveNow());
        }
        REQUIRE(planner.mainQueue().runPostedUntil([&] { return told.has_value(); }));
        REQUIRE_FALSE(told->isFailure);
        name = told->to;
        REQUIRE(filesOf(planner.folder()) == std::vector<std::string>{"Notes/" + name});
    }
    CHECK(planner.textOf("Notes/" + name) == "# Plans\n" + std::string(240, 'x'));
}

TEST_CASE("what moves a note waits for who saves it, and for nobody else") {
    app::NoteMoves moves;
    std::atomic<bool> isSaved = false;
    bool wasSaved = false;
    std::optional<app::NoteMoves::Stay> save(std::in_place, moves, "Work/Plans.txt", 0U);
    const app::NoteMoves::Stay other(moves, "Workshop/Plans.txt", 0);
    std::thread mover([&] {
        const app::NoteMoves::Move move(moves, "Work");
        wasSaved = isSaved;
    });
    std::this_thread::sleep_for(50ms);  // so that who does not wait is surely early
    isSaved = true;
    save.reset();
    mover.join();
    CHECK(wasSaved);
}

TEST_CASE("a note of another name, and a day's, are where they were") {
    SteppedPlanner planner;
    planner.write("Notes/Work/Plans.txt", "# Plans\n");
    planner.write("Notes/Workshop/Plans.txt", "shop\n");
    Editor shop{planner, {base::NoteType::note, "Workshop/Plans.txt", std::nullopt}};
    Editor day{planner, {base::NoteType::calendar, "Work/20190305.txt", base::Day{}}};
    NoteOrganiser organiser{planner.services()};
    organiser.renameFolder("Work", "Job", {});
    planner.settle();
    shop.type("shop!\n");
    day.type("day\n");
    planner.pass(1s);
    CHECK(planner.textOf("Notes/Workshop/Plans.txt") == "shop!\n");
    CHECK(planner.textOf("Calendar/Work/20190305.txt") == "day\n");
}
