// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "app/change_notes.h"
#include "app/planner.h"
#include "base/enum_names.h"

using namespace tessaly;
using app::NoteChange;
using tests::Planner;

namespace {

constexpr const char* notes =
    "-- Calendar/20190304.txt\n"
    "Monday\n"
    "-- Notes/Plans.txt\n"
    "# Plans\n"
    "-- Notes/Work/Plans.txt\n"
    "# Work plans\n";

struct NewRow {
    app::NoteRequest request;
    std::string filename;  // "" for a refusal
    std::string text;
};

const NewRow newRows[] = {
    {{"Ideas", "", ""}, "Ideas.txt", "# Ideas\n"},
    {{"Ideas", "", "one\ntwo"}, "Ideas.txt", "# Ideas\none\ntwo\n"},
    {{"Ideas", "", "one\n"}, "Ideas.txt", "# Ideas\none\n"},
    {{" Two\nlines\r\n", "", ""}, "Two lines.txt", "# Two lines\n"},
    {{"plans", "", ""}, "plans 2.txt", "# plans\n"},  // differs from one there in case alone
    {{"Ideas", "Home/Garden/", ""}, "Home/Garden/Ideas.txt", "# Ideas\n"},
    {{"Ideas", "Notes/Home", ""}, "Home/Ideas.txt", "# Ideas\n"},
    {{"", "", "* Buy milk"}, "Buy milk.txt", "* Buy milk\n"},
    {{"Ideas", "", "\xEF\xBB\xBFone"}, "Ideas.txt", "# Ideas\none\n"},
    {{"Ideas", "", "\xFF"}, "", ""},
    {{"\xFF", "", ""}, "", ""},
    {{"Ideas", "", std::string("a\0b", 3)}, "", ""},
    {{"Ideas", "../Notes", ""}, "", ""},
    {{"Ideas", "Home/.hidden", ""}, "", ""},
    {{"Ideas", "_attachments", ""}, "", ""},
};

void check(const NewRow& row) {
    CAPTURE(row.request.title);
    CAPTURE(row.request.folder);
    Planner planner;
    planner.write(notes);
    const auto before = planner.everything();
    const auto made = app::newNote(planner.services(), row.request);
    if (row.filename.empty()) {
        CHECK_FALSE(made);
        CHECK(planner.everything() == before);
        return;
    }
    REQUIRE(made);
    CHECK(made->note.filename == row.filename);
    CHECK(planner.textOf("Notes/" + row.filename) == row.text);
    CHECK(planner.textOf("Notes/Plans.txt") == "# Plans\n");
}

struct AddRow {
    app::AddRequest request;
    std::string result;  // the change and the file, or how the refusal begins
    std::string text;    // of that file
};

const AddRow addRows[] = {
    {{"today", "* Call"}, "created Calendar/20190305.txt", "* Call"},
    {{"yesterday", "* Call"}, "added Calendar/20190304.txt", "Monday\n* Call\n"},
    {{"yesterday", "New", base::WriteMode::overwrite}, "overwritten Calendar/20190304.txt", "New"},
    {{"yesterday", ""}, "unchanged Calendar/20190304.txt", "Monday\n"},
    {{"today", ""}, "unchanged Calendar/20190305.txt", "-"},
    {{"work plans", "more"}, "added Notes/Work/Plans.txt", "# Work plans\nmore\n"},
    {{"Plams", "more"}, "there is no note called “Plams”; did you mean “Plans”", ""},
    {{"today", "\xC3"}, "the text is not UTF-8", ""},
    {{"today", std::string("\0", 1)}, "the text holds a NUL character", ""},
};

void check(const AddRow& row) {
    CAPTURE(row.result);
    Planner planner;
    planner.write(notes);
    const auto before = planner.everything();
    const auto added = app::addText(planner.services(), row.request);
    if (!added) {
        CHECK(added.failure().description.substr(0, row.result.size()) == row.result);
        CHECK(planner.everything() == before);
        return;
    }
    constexpr std::array names{"created", "added", "overwritten", "unchanged"};
    const std::string file = app::pathInDataFolder(added->note);
    CHECK(std::string{names[static_cast<std::size_t>(added->change)]} + " " + file == row.result);
    CHECK(planner.textOf(file) == row.text);
}

}  // namespace

TEST_CASE("a new note has its title, a name of its own, and a place among the notes") {
    for (const NewRow& row : newRows) {
        check(row);
    }
}

TEST_CASE("text is added to the note that is meant, and to no other") {
    for (const AddRow& row : addRows) {
        check(row);
    }
}

TEST_CASE("a note goes to the trash, and without one its text is in the history") {
    const ports::Trash none = [](const std::string&) {
        return base::Failure{base::Failure::Kind::unavailable, "no trash here"};
    };
    for (const bool hasTrash : {true, false}) {
        CAPTURE(hasTrash);
        Planner::User user;
        user.trash = hasTrash ? user.trash : none;
        Planner planner{user};
        planner.write(notes);
        const auto trashed = app::trashNote(planner.services(), "Plans");
        REQUIRE(trashed);
        CHECK(planner.textOf("Notes/Plans.txt") == "-");
        CHECK(trashed->change == (hasTrash ? NoteChange::trashed : NoteChange::removed));
        const auto entry = planner.services().history().entries(trashed->path);
        REQUIRE(entry);
        REQUIRE_FALSE(entry->empty());
        CHECK(planner.services().history().text(entry->front()).value() == "# Plans\n");
        if (!hasTrash) {
            CHECK(trashed->historyId == entry->front().hash);
        }
    }
}
