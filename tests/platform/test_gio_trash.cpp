// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "platform/gio_trash.h"
#include "platform/trash_return.h"
#include "support/environment.h"
#include "support/failure_kind.h"
#include "support/temp_folder.h"
#include "support/without_rights.h"

namespace tessaly::platform {
namespace {

using base::Failure;
using tests::failureKind;
using tests::TempFolder;

dev_t deviceOf(const char* path) {
    struct stat status {};
    return ::stat(path, &status) == 0 ? status.st_dev : 0;
}

void checkTrashed(const TempFolder& folder, const ports::Trash& trash) {
    struct Row {
        const char* name;
        const char* written;  ///< as the trash's record writes it
        const char* bytes;
    };
    const std::vector<Row> rows{
        {"note.txt", "note.txt", "text\n"},
        {"x%41 \xc3\xa4.txt", "x%2541%20%C3%A4.txt", "other"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.name);
        const std::string file = folder.write(std::string("notes/") + row.name, row.bytes);
        REQUIRE(trash(file));
        CHECK(!folder.exists(std::string("notes/") + row.name));
        CHECK(folder.read(std::string("data/Trash/files/") + row.name) == row.bytes);
        const auto record = folder.read(std::string("data/Trash/info/") + row.name + ".trashinfo");
        CHECK(record.find("\nPath=" + folder.path() + "/notes/" + row.written + "\n") !=
              std::string::npos);
    }
    // A second one of the name displaces nothing.
    REQUIRE(trash(folder.write("notes/note.txt", "second")));
    CHECK(folder.read("data/Trash/files/note.txt") == "text\n");
    CHECK(folder.names("data/Trash/files").size() == rows.size() + 1);
    CHECK(folder.names("data/Trash/info").size() == rows.size() + 1);
}

/// How trashing ends for a user without rights; nothing: they cannot be laid down. In a process
/// that ends on the spot, since GLib forgets to free some bytes on this way, and leak checkers
/// complain at the end.
std::optional<int> failureWithoutRights(const TempFolder& folder, const ports::Trash& trash,
                                        const std::string& file) {
    constexpr int noFailure = 100;
    constexpr int noRights = 101;
    const pid_t child = ::fork();
    REQUIRE(child >= 0);
    if (child == 0) {
        const tests::WithoutRights rights(folder);
        const auto kind = rights.effective() ? failureKind(trash(file)) : std::nullopt;
        ::_exit(!rights.effective() ? noRights : kind ? static_cast<int>(*kind) : noFailure);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    REQUIRE(WIFEXITED(status));
    return WEXITSTATUS(status) == noRights ? std::nullopt : std::optional(WEXITSTATUS(status));
}

void checkRefused(const TempFolder& folder, const ports::Trash& trash) {
    CHECK(failureKind(trash(folder / "notes/missing")) == Failure::Kind::notFound);
    CHECK(failureKind(trash(folder / std::string("a\0b", 3))) == Failure::Kind::malformed);

    folder.write("closed/note", "kept");
    ::chmod((folder / "closed").c_str(), 0555);
    for (const char* name : {"data", "data/Trash", "data/Trash/files", "data/Trash/info"}) {
        ::chmod((folder / name).c_str(), 0777);
    }
    if (const auto failure = failureWithoutRights(folder, trash, folder / "closed/note")) {
        CHECK(*failure == static_cast<int>(Failure::Kind::denied));
    } else {
        MESSAGE("skipped: this root cannot lay down its rights");
    }
    ::chmod((folder / "closed").c_str(), 0700);
    CHECK(folder.read("closed/note") == "kept");
}

void checkVolumeWithoutTrash(const TempFolder& folder, const ports::Trash& trash) {
    const char* memory = "/dev/shm";
    if (deviceOf(memory) == 0 || deviceOf(memory) == deviceOf(folder.path().c_str())) {
        MESSAGE("skipped: there is no second volume without a trash");
        return;
    }
    const tests::Environment environment({{"TMPDIR", memory}});
    const TempFolder elsewhere;
    const auto refused = trash(elsewhere.write("note", "kept"));
    CHECK(failureKind(refused) == Failure::Kind::unavailable);
    CHECK(elsewhere.names() == std::vector<std::string>{"note"});
    CHECK(elsewhere.read("note") == "kept");
}

struct ReturnedRow {
    const char* what;
    const char* name;  // below "notes"
    void (*meanwhile)(const TempFolder& folder);
    std::optional<Failure::Kind> failure;
    const char* bytes;  // that lie there then
};

void checkReturned(const TempFolder& folder, const ports::Trash& trash) {
    const auto nothing = [](const TempFolder&) {};
    const ReturnedRow rows[] = {
        {"a file", "plans.txt", nothing, std::nullopt, "trashed"},
        {"an odd name", "y%41 \xc3\xa4.txt", nothing, std::nullopt, "trashed"},
        {"a folder", "work/plans.txt", nothing, std::nullopt, "trashed"},
        {"its name is taken", "taken.txt",
         [](const TempFolder& here) { here.write("notes/taken.txt", "other"); },
         Failure::Kind::exists, "other"},
        {"the trash is emptied", "gone.txt",
         [](const TempFolder& here) { std::filesystem::remove_all(here / "data/Trash/files"); },
         Failure::Kind::notFound, "-"},
    };
    for (const ReturnedRow& row : rows) {
        CAPTURE(row.what);
        const std::string name = std::string("notes/") + row.name;
        const std::string file = folder.write(name, "older");
        REQUIRE(trash(file));
        folder.write(name, "trashed");
        const bool isFolder = name.find("work") != name.npos;
        const std::string item = isFolder ? folder / "notes/work" : file;
        REQUIRE(trash(item));
        const auto found = trashReturn()(item);
        REQUIRE(found);
        row.meanwhile(folder);
        CHECK(failureKind((*found)()) == row.failure);
        CHECK((folder.exists(name) ? folder.read(name) : "-") == row.bytes);
        const std::size_t left = row.failure ? 2 : 1;  // records: the older one, and this
        const auto records = folder.names("data/Trash/info");
        const std::string stem = isFolder ? "work" : std::string(row.name).substr(0, 4);
        CHECK(std::count_if(records.begin(), records.end(), [&](const std::string& record) {
                  return record.starts_with(stem);
              }) == static_cast<std::ptrdiff_t>(isFolder ? 0 : left));
    }
    CHECK(failureKind(trashReturn()(folder / "notes/never")) == Failure::Kind::notFound);
}

// One case for all: GLib looks up the user's folders once in a process.
TEST_CASE("a trashed file lies in the user's trash, with the place it came from") {
    const TempFolder folder;
    const tests::Environment environment(
        {{"HOME", folder.path()}, {"XDG_DATA_HOME", folder / "data"}});
    const ports::Trash trash = gioTrash();
    checkTrashed(folder, trash);
    checkReturned(folder, trash);
    checkRefused(folder, trash);
    checkVolumeWithoutTrash(folder, trash);
}

}  // namespace
}  // namespace tessaly::platform
