// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>

#include <doctest/doctest.h>

#include "app/note_lists.h"
#include "app/planner.h"

using namespace tessaly;
using app::NoteScope;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190305.txt\n* [x] Done #work @done(2019-03-05)\n"
    "-- Calendar/20181231.txt\nParty with @maria\n"
    "-- Calendar/ideas.txt\n* Stray\n"
    "-- Notes/z.txt\n# apples\n"
    "* One >2019-03-09 #Work/Clients\n"
    "\t- [-] Two @Maria @repeat(1/2)\n"
    "-- Notes/Work/a.txt\n# Zebra\n"
    "-- Notes/Work/Deep/e.txt\n# \xc3\x89t\xc3\xa9 #work\n"
    "3. [>] Three >2019-02-31 >2019-03-07\n"
    "-- Notes/Workshop.txt\n# Bread\n";

// Each note is an hour older than the one before it.
void age(Planner& planner) {
    const char* const newestFirst[] = {
        "Notes/Work/a.txt",      "Calendar/20181231.txt", "Notes/z.txt",       "Notes/Workshop.txt",
        "Notes/Work/Deep/e.txt", "Calendar/20190305.txt", "Calendar/ideas.txt"};
    auto time = std::filesystem::file_time_type::clock::now();
    for (const char* name : newestFirst) {
        const std::string file = planner.folder() / (std::string{Planner::root} + name);
        std::filesystem::last_write_time(file, time);
        time -= std::chrono::hours(1);
    }
}

struct ListRow {
    std::string sortBy;
    NoteScope scope;
    std::string folder;
    std::string expected;
};

const ListRow listRows[] = {
    {"modified", NoteScope::all, "", "Work/a 20181231 z Workshop Work/Deep/e 20190305 ideas "},
    {"modified", NoteScope::general, "", "Work/a z Workshop Work/Deep/e "},
    {"modified", NoteScope::calendar, "", "20181231 20190305 ideas "},
    {"title", NoteScope::all, "", "z Workshop ideas Work/a Work/Deep/e 20181231 20190305 "},
    {"title", NoteScope::all, "Work", "Work/a Work/Deep/e "},
    {"title", NoteScope::general, "Notes/Work/Deep/", "Work/Deep/e "},
    {"title", NoteScope::general, "Wor", ""},
};

void check(const ListRow& row) {
    CAPTURE(row.sortBy);
    CAPTURE(row.folder);
    Planner planner;
    planner.set(std::string{R"({"sortBy": ")"} + row.sortBy + "\"}");
    planner.write(notes);
    age(planner);
    std::string names;
    for (const auto& note : app::listNotes(planner.services(), row.scope, row.folder).rows) {
        names += note.filename.substr(0, note.filename.find('.')) + " ";
    }
    CHECK(names == row.expected);
}

}  // namespace

TEST_CASE("notes are listed by title or date, below one folder or all") {
    for (const ListRow& row : listRows) {
        check(row);
    }
}
