// SPDX-License-Identifier: MIT
#include <optional>
#include <string>
#include <utility>

#include <doctest/doctest.h>

#include "store/note_names.h"
#include "store_fixture.h"
#include "support/log_capture.h"

using namespace tessaly;
using base::NoteType;
using tests::LogCapture;
using tests::StoreFixture;

namespace {

store::DataStore::Roots roots(std::string data, ports::DropboxAuthorised dropbox,
                              ports::CloudContainer cloud, std::optional<std::string> dataFolder) {
    return {.folders = {.data = std::move(data), .config = {}, .state = {}, .cache = {}},
            .bundleIdentifier = "org.example",
            .dropboxAuthorised = std::move(dropbox),
            .cloudContainer = std::move(cloud),
            .dataFolder = std::move(dataFolder)};
}

store::DataStore::Tools tools(StoreFixture& fixture) {
    return {fixture.files,         fixture.changes, fixture.safeFiles,
            StoreFixture::noTrash, fixture.clock,   fixture.executor};
}

}  // namespace

TEST_CASE("the root is chosen at each look-up") {
    StoreFixture fixture;
    bool linked = false;
    int asked = 0;
    std::optional<std::string> container = "/cloud";
    const auto cloud = [&] {
        ++asked;
        return container;
    };
    const store::DataStore store(tools(fixture),
                                 roots("/home/me/share", [&] { return linked; }, cloud, {}));

    CHECK(store.folder(NoteType::note) == "/cloud/Documents/Notes");
    CHECK(store.localFolder(NoteType::trash) == "/home/me/share/org.example/.Trash");

    linked = true;
    asked = 0;
    CHECK(store.folder(NoteType::note) == "/home/me/share/org.example/Notes");
    CHECK_FALSE(store.cloudFolder(NoteType::note));
    CHECK(asked == 0);

    linked = false;
    container.reset();
    CHECK(store.root() == "/home/me/share/org.example");
}

TEST_CASE("a new name collides with none in the folder") {
    StoreFixture fixture;
    for (const char* name : {"Plans.txt", "Plans 2.txt", "plans 3.TXT", "Plans 5.txt", "Ideas.md",
                             "Caf\xC3\xA9.txt", "STRASSE.txt", "Filter", "Far.txt.nextcloud"}) {
        fixture.folder.write("data/Notes/" + std::string(name), "");
    }
    fixture.folder.mkdir("data/Notes/Sub.txt");
    const auto row = [&](const std::string& base, std::string_view extension,
                         std::string_view expected) {
        CAPTURE(base);
        CHECK(fixture.store.uniqueFilename(base, extension, fixture.root + "/Notes") == expected);
    };
    row("Plans", "txt", "Plans 4");
    row("pLANS", "txt", "pLANS 4");
    row("Plans 2", "txt", "Plans 2 2");
    row("Ideas", "txt", "Ideas");
    row("Cafe\xCC\x81", "txt", "Cafe\xCC\x81 2");
    row("stra\xC3\x9F"
        "e",
        "txt",
        "stra\xC3\x9F"
        "e 2");
    row("Sub", "txt", "Sub 2");
    row("Filter", "", "Filter 2");
    row("Far", "txt", "Far 2");

    const std::string full(251, 'a');
    fixture.folder.write("data/Notes/" + full + ".txt", "");
    row(full, "txt", std::string(249, 'a') + " 2");
}

TEST_CASE("a folder that cannot be listed gives the name as it is") {
    StoreFixture fixture;
    LogCapture log;
    CHECK(fixture.store.uniqueFilename("Plans", "txt", fixture.root + "/Notes") == "Plans");
    CHECK(log.lines().empty());
    const std::string file = fixture.folder.write("data/Notes", "a file");
    CHECK(fixture.store.uniqueFilename("Plans", "txt", file) == "Plans");
    REQUIRE(log.lines().size() == 1);
    CHECK(log.lines()[0].starts_with("error in uniqueFilename(): "));
}

TEST_CASE("a name from outside stays in the data folder or is refused") {
    StoreFixture fixture;
    const auto& folder = fixture.folder;
    folder.write("data/Notes/sub/a.txt", "");
    folder.write("data-other/b.txt", "");
    folder.link("data/Notes/inside", "sub");
    folder.link("data/Notes/out", "../..");
    folder.link("data/Notes/sibling.txt", "../../data-other/b.txt");
    folder.link("data/Notes/sub/dangling", "../../../nowhere/deep");
    folder.link("data/Notes/loop", "loop");

    const auto answer = [&](std::string_view name, NoteType type) -> std::string {
        const auto path = fixture.store.pathOf(type, name);
        if (path) {
            return *path == fixture.root + "/Notes/" + std::string(name) ? "inside" : *path;
        }
        return path.failure().kind == base::Failure::Kind::outside ? "outside" : "failed";
    };
    const auto row = [&](std::string_view name, std::string_view expected) {
        CAPTURE(name);
        CHECK(answer(name, NoteType::note) == expected);
    };
    row("sub/a.txt", "inside");
    row("new/deeper/x.txt", "inside");
    row("inside/new.txt", "inside");
    row("a..b.txt", "inside");
    row("", "outside");
    row(".", "outside");
    row("..", "outside");
    row("../Calendar/x.txt", "outside");
    row("sub/../../x", "outside");
    row("/etc/passwd", "outside");
    row("sub//a.txt", "outside");
    row(std::string_view("a\0.txt", 6), "outside");
    row("out", "outside");
    row("out/new/x.txt", "outside");
    row("sibling.txt", "outside");
    row("sub/dangling", "outside");
    row("loop/x.txt", "failed");
    CHECK(answer("x.txt", NoteType::none) == "outside");
}

TEST_CASE("names are resolved also before there is a data folder and below a root that is a link") {
    StoreFixture fixture;
    const auto row = [&] {
        const auto path = fixture.store.pathOf(NoteType::note, "sub/x.txt");
        REQUIRE(path);
        CHECK(*path == fixture.root + "/Notes/sub/x.txt");
    };
    row();
    fixture.folder.mkdir("elsewhere/Notes/sub");
    fixture.folder.link("data", "elsewhere");
    row();
}

TEST_CASE("a new note is written whole, once, and its folder is made") {
    StoreFixture fixture;
    LogCapture log;
    CHECK(fixture.store.createNote(NoteType::note, "sub/First.txt", "Hello\n").ok());
    CHECK(fixture.folder.read("data/Notes/sub/First.txt") == "Hello\n");
    CHECK(log.lines() ==
          std::vector<std::string>{"Created directories: " + fixture.root + "/Notes/sub"});
    log.clear();

    CHECK_FALSE(fixture.store.createNote(NoteType::note, "sub/First.txt", "Other").ok());
    CHECK(fixture.folder.read("data/Notes/sub/First.txt") == "Hello\n");
    CHECK_FALSE(fixture.store.createNote(NoteType::note, "../x.txt", "").ok());
    fixture.folder.write("data/Calendar", "a file in the way");
    CHECK_FALSE(fixture.store.createNote(NoteType::calendar, "20190305.txt", "").ok());
    REQUIRE(log.lines().size() == 3);
    for (const std::string& line : log.lines()) {
        CHECK(line.starts_with("Could not make a filename or write a note "));
    }
    log.clear();

    store::DataStore unwritable(tools(fixture), roots({}, {}, {}, "/proc/none"));
    CHECK_FALSE(unwritable.createNote(NoteType::note, "First.txt", "").ok());
    REQUIRE(log.lines().size() == 1);
    CHECK(
        log.lines()[0].starts_with("could not create a local folder for saving the notes (very "
                                   "first note?), error "));
}

TEST_CASE("folders are made where nothing is") {
    StoreFixture fixture;
    LogCapture log;
    CHECK(fixture.store.createFolderIfNonExisting(fixture.root + "/a/b"));
    CHECK(fixture.folder.exists("data/a/b"));
    const std::string file = fixture.folder.write("data/file", "kept");
    CHECK(fixture.store.createFolderIfNonExisting(file));
    CHECK(fixture.folder.read("data/file") == "kept");
    CHECK(log.lines().empty());
    CHECK_FALSE(fixture.store.createFolderIfNonExisting(file + "/below"));
    REQUIRE(log.lines().size() == 1);
    CHECK(log.lines()[0].starts_with("Error createFolderIfNonExisting: "));
}

TEST_CASE("the local folder is looked for, and a failure is told") {
    StoreFixture fixture;
    LogCapture log;
    const auto exists = [&](const char* data) {
        return store::DataStore(tools(fixture), roots(fixture.folder / data, {}, {}, {}))
            .localFolderExists();
    };
    CHECK_FALSE(exists("share"));
    fixture.folder.mkdir("share/org.example");
    CHECK(exists("share"));
    CHECK(log.lines().empty());
    fixture.folder.link("loop", "loop");
    CHECK_FALSE(exists("loop"));
    REQUIRE(log.lines().size() == 1);
    CHECK(log.lines()[0].starts_with("error in localFolderExists(): "));
}
