// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "store/data_store.h"
#include "store_fixture.h"
#include "support/log_capture.h"

using namespace tessaly;
using base::Failure;
using base::NoteType;
using tests::LogCapture;
using tests::StoreFixture;

namespace {

constexpr base::Day day{std::chrono::year(2019), std::chrono::month(3), std::chrono::day(5)};

store::NewNote general(std::string title, std::string text = "text") {
    store::NewNote note;
    note.title = std::move(title);
    note.text = std::move(text);
    return note;
}

store::NewNote calendar() {
    store::NewNote note;
    note.type = NoteType::calendar;
    note.day = day;
    note.text = "of the day";
    return note;
}

Failure full(const std::string& path) {
    return {Failure::Kind::noSpace, path + ": no space left"};
}

/// Refuses one kind of change.
tests::HookedChanges::Hook refusing(std::string_view refused) {
    return [refused](std::string_view operation, const std::string& path) {
        return operation == refused ? std::optional(full(path)) : std::nullopt;
    };
}

}  // namespace

TEST_CASE("a new note gets a name of its own") {
    StoreFixture fixture;
    fixture.folder.write("data/Notes/Far.txt.nextcloud", "");
    const auto row = [&](const store::NewNote& note, std::string_view expected) {
        CAPTURE(note.title);
        const auto name = fixture.store.writeNewNote(note);
        REQUIRE(name);
        CHECK(*name == expected);
        const std::string_view folder = base::folderName(note.type);
        CHECK(fixture.folder.read("data/" + std::string(folder) + "/" + *name) == note.text);
    };
    row(general("Plans"), "Plans.txt");
    row(general("plans", "second"), "plans 2.txt");
    row(general("", "# Plans\nthird"), "Plans 3.txt");
    row(general("Far"), "Far 2.txt");
    row(general("# #", "# #"), "Untitled - 05-Mar-2019 14-07-33.txt");
    row(general("", ""), "Untitled - 05-Mar-2019 14-07-33 2.txt");
    store::NewNote inFolder = general("* [x] Call 2 people");
    inFolder.strip = store::StripListMarkers::yes;
    inFolder.folder = "Work/Calls";
    row(inFolder, "Work/Calls/Call 2 people.txt");
    row(calendar(), "20190305.txt");

    const auto again = fixture.store.writeNewNote(calendar());
    REQUIRE_FALSE(again);
    CHECK(again.failure().kind == Failure::Kind::exists);
}

TEST_CASE("a new note that cannot be named or placed is refused") {
    StoreFixture fixture;
    fixture.folder.mkdir("elsewhere");
    fixture.folder.mkdir("data/Notes");
    fixture.folder.write("data/Calendar/20190305.txt.nextcloud", "");
    fixture.folder.link("data/Notes/out", "../../elsewhere");
    const auto row = [&](const store::NewNote& note, Failure::Kind expected) {
        CAPTURE(note.folder);
        LogCapture log;
        const auto name = fixture.store.writeNewNote(note);
        REQUIRE_FALSE(name);
        CHECK(name.failure().kind == expected);
        REQUIRE(log.lines().size() == 1);
        CHECK(log.lines()[0].starts_with("Could not make a filename or write a note "));
    };
    for (const char* folder : {"a/../..", "out"}) {
        store::NewNote note = general("Plans");
        note.folder = folder;
        row(note, Failure::Kind::outside);
    }
    store::NewNote dayless = calendar();
    dayless.day.reset();
    row(dayless, Failure::Kind::malformed);
    row(general("Plans", "caf\xE9"), Failure::Kind::malformed);
    row(calendar(), Failure::Kind::unavailable);
    CHECK(fixture.folder.names("elsewhere").empty());
    CHECK(fixture.folder.names("data/Notes") == std::vector<std::string>{"out"});
}

TEST_CASE("a name that another program takes meanwhile is left to it") {
    StoreFixture fixture;
    fixture.folder.mkdir("data/Notes");
    int taken = 0;
    fixture.changes.before = [&](std::string_view operation, const std::string& path) {
        if (operation == "create" && path.starts_with(fixture.root) && taken < 2) {
            ++taken;
            fixture.folder.write(path.substr(fixture.folder.path().size() + 1), "theirs");
        }
        return std::optional<Failure>();
    };
    LogCapture log;
    const auto name = fixture.store.writeNewNote(general("Plans", "ours"));
    REQUIRE(name);
    CHECK(*name == "Plans 3.txt");
    CHECK(fixture.folder.read("data/Notes/Plans.txt") == "theirs");
    CHECK(fixture.folder.read("data/Notes/Plans 2.txt") == "theirs");
    CHECK(fixture.folder.read("data/Notes/Plans 3.txt") == "ours");
    CHECK(log.lines().empty());
}

TEST_CASE("a note that is written while the cloud drive comes is pushed there") {
    StoreFixture fixture(StoreFixture::Root::chosen);
    int asked = 0;
    fixture.cloudContainer = [&] {
        return asked++ == 0 ? std::nullopt : std::optional(fixture.folder / "cloud");
    };
    fixture.folder.write("cloud/Documents/Notes/Work/Plans.txt", "theirs");
    store::NewNote note = general("Plans", "ours");
    note.folder = "Work";
    const auto name = fixture.store.writeNewNote(note);
    REQUIRE(name);
    CHECK(*name == "Work/Plans 2.txt");
    CHECK(fixture.folder.read("cloud/Documents/Notes/Work/Plans 2.txt") == "ours");
    CHECK(fixture.folder.names("share/org.example/Notes/Work").empty());
}

TEST_CASE("a failure that no other line tells of has one of its own") {
    StoreFixture fixture(StoreFixture::Root::chosen);
    fixture.folder.write("share/org.example/Notes/Plans.txt", "kept");
    LogCapture log;
    fixture.cloudContainer = [] { return "/proc/none"; };
    CHECK_FALSE(fixture.store.pushToCloudDrive(NoteType::note, "Plans.txt").ok());
    fixture.cloudContainer = [] { return std::nullopt; };
    fixture.changes.before = refusing("remove");
    CHECK_FALSE(fixture.store.trashNote(NoteType::note, "Plans.txt").ok());
    REQUIRE(log.lines().size() == 3);
    CHECK(log.lines()[0].starts_with("Could not create the iCloud Drive directories"));
    CHECK(log.lines()[1].starts_with("Failed to trash note in first trial "));
    CHECK(log.lines()[2].starts_with("Failed to trash note in second trial "));
    CHECK(fixture.folder.read("share/org.example/Notes/Plans.txt") == "kept");
}

TEST_CASE("a note goes to the trash, else into the history, and the log tells") {
    StoreFixture fixture;
    const std::string path = fixture.root + "/Notes/sub/Plans.txt";
    const auto row = [&](ports::Trash trash, const auto& discard, store::Trashed expected,
                         const std::vector<std::string>& lines) {
        fixture.folder.write("data/Notes/sub/Plans.txt", "the plan");
        fixture.trash = std::move(trash);
        LogCapture log;
        const auto trashed = discard();
        REQUIRE(trashed);
        CHECK(*trashed == expected);
        CHECK(log.lines() == lines);
        CHECK_FALSE(fixture.folder.exists("data/Notes/sub/Plans.txt"));
    };
    const auto working = [&](const std::string& file) {
        return fixture.disk.move(file, fixture.folder / "trashed")
                   ? fixture.disk.remove(fixture.folder / "trashed")
                   : StoreFixture::noTrash(file);
    };
    const auto trash = [&] { return fixture.store.trashNote(NoteType::note, "sub/Plans.txt"); };
    const auto remove = [&](store::FromTrash from) {
        return [&fixture, from] {
            return fixture.store.deleteNote(NoteType::note, "sub/Plans.txt", from);
        };
    };
    const auto toTrash = store::Trashed::toSystemTrash;
    const std::string failed = "Failed to trash note in first trial " + path + ": no trash here";
    row(working, trash, toTrash, {"Deleted: " + path});
    row(working, remove(store::FromTrash::yes), toTrash,
        {"Deleted: " + path + ", fromTrash: true"});
    row(working, remove(store::FromTrash::no), toTrash,
        {"Deleted: " + path + ", fromTrash: false"});
    row(StoreFixture::noTrash, trash, store::Trashed::toHistory, {failed});
    row(StoreFixture::noTrash, remove(store::FromTrash::yes), store::Trashed::toHistory, {failed});

    const auto entries = fixture.history.entries(path);
    REQUIRE(entries);
    REQUIRE_FALSE(entries->empty());
    const auto text = fixture.history.text(entries->front());
    CHECK((text && *text == "the plan"));
}

TEST_CASE("what is no note's file is not trashed") {
    StoreFixture fixture;
    fixture.folder.write("data/Notes/sub/Plans.txt", "");
    fixture.folder.write("kept.txt", "");
    LogCapture log;
    const auto row = [&](const char* name, Failure::Kind expected) {
        CAPTURE(name);
        const auto trashed = fixture.store.trashNote(NoteType::note, name);
        REQUIRE_FALSE(trashed);
        CHECK(trashed.failure().kind == expected);
    };
    row("None.txt", Failure::Kind::notFound);
    row("none/None.txt", Failure::Kind::notFound);
    row("sub", Failure::Kind::notAFile);
    row("../../kept.txt", Failure::Kind::outside);
    CHECK(fixture.folder.exists("kept.txt"));
    CHECK(fixture.folder.exists("data/Notes/sub/Plans.txt"));
    CHECK(log.lines().empty());
}
