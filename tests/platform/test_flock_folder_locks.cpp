// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include <doctest/doctest.h>
#include <sys/wait.h>

#include "platform/flock_folder_locks.h"
#include "platform/folder_locks_contract.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

using tests::Paths;
using tests::TempFolder;
using tests::unfinishedOf;
using namespace std::chrono_literals;
using namespace std::string_literals;

TEST_CASE("folder locks on files keep the contract") {
    const TempFolder folder;
    FlockFolderLocks locks(folder / "run/tessaly", 0ms);
    tests::checkFolderLocks(locks);
}

/// Runs `work` in a process of its own, which ends with it. No other thread may run.
template <class Work>
pid_t inProcess(Work work) {
    const pid_t child = ::fork();
    REQUIRE(child >= 0);
    if (child == 0) {
        ::_exit(work() ? 0 : 1);
    }
    return child;
}

int statusOf(pid_t child) {
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

TEST_CASE("processes wait for each other") {
    const TempFolder folder;
    constexpr int processes = 4;
    constexpr int rounds = 50;
    folder.write("count", "0");
    const auto count = [&] {
        FlockFolderLocks locks(folder / "locks");
        for (int i = 0; i < rounds; ++i) {
            const auto lock = locks.take(folder.path());
            if (!lock) {
                return false;
            }
            folder.write("count", std::to_string(std::stoi(folder.read("count")) + 1));
        }
        return true;
    };
    std::vector<pid_t> children;
    for (int i = 0; i < processes; ++i) {
        children.push_back(inProcess(count));
    }
    for (const pid_t child : children) {
        CHECK(statusOf(child) == 0);
    }
    CHECK(folder.read("count") == std::to_string(processes * rounds));
}

/// A process that holds the lock of `folder`, has begun a change in `begun` and stands still.
pid_t startHolder(const std::string& lockFolder, const std::string& folder,
                  const std::string& begun) {
    int ends[2];
    REQUIRE(::pipe(ends) == 0);
    const pid_t child = inProcess([&] {
        FlockFolderLocks locks(lockFolder);
        const auto lock = locks.take(folder);
        const bool ready = lock && (*lock)->begin(begun) && ::write(ends[1], "x", 1) == 1;
        while (ready) {
            ::pause();
        }
        return false;
    });
    ::close(ends[1]);
    char byte = 0;
    CHECK(::read(ends[0], &byte, 1) == 1);
    ::close(ends[0]);
    return child;
}

TEST_CASE("a process that is killed loses its lock and leaves what it had begun") {
    const TempFolder folder;
    const std::string notes = folder.mkdir("notes");
    FlockFolderLocks locks(folder / "locks", 0ms);
    struct Row {
        const char* begins;
        Paths unfinished;
    };
    for (const Row& row : std::vector<Row>{
             {"Calendar", {notes, notes + "/Calendar"}},  // nobody has finished before
             {"Notes", {notes + "/Notes"}},
         }) {
        CAPTURE(row.begins);
        const pid_t child = startHolder(folder / "locks", notes, notes + "/" + row.begins);
        CHECK(!locks.take(notes).ok());
        CHECK(!locks.isUnfinished(notes));

        ::kill(child, SIGKILL);
        CHECK(WIFSIGNALED(statusOf(child)));
        CHECK(locks.isUnfinished(notes));
        const auto lock = locks.take(notes);
        REQUIRE(lock);
        CHECK((*lock)->unfinished() == row.unfinished);
        (*lock)->finish();
    }
    CHECK(!locks.isUnfinished(notes));
}

TEST_CASE("a lock file that is torn, of another run or gone is no finished one") {
    const TempFolder folder;
    const std::string notes = folder.mkdir("notes");
    FlockFolderLocks locks(folder / "locks", 0ms);
    (*locks.take(notes))->finish();
    REQUIRE(folder.names("locks").size() == 1);
    const std::string file = "locks/" + folder.names("locks").front();
    const std::string run = folder.read(file);
    struct Row {
        const char* name;
        std::string bytes;
        bool isUnfinished;
        Paths folders;
    };
    for (const Row& row : std::vector<Row>{
             {"finished", run, false, {}},
             {"begun", run + "/a\0/b\0"s, true, {"/a", "/b"}},
             {"torn", run + "/a\0/b"s, true, {notes, "/a"}},
             {"torn at once", run + "/a"s, true, {notes}},
             {"new", "", true, {notes}},
             {"new and begun", "/a\0"s, true, {notes, "/a"}},
             {"another run", "run 1\0"s, false, {notes}},
             {"another run, begun", "run 1\0/a\0"s, true, {notes, "/a"}},
             {"torn run", run.substr(0, run.size() / 2), true, {notes}},
         }) {
        CAPTURE(row.name);
        folder.write(file, row.bytes);
        CHECK(locks.isUnfinished(notes) == row.isUnfinished);
        {
            const auto lock = locks.take(notes);
            REQUIRE(lock);
            CHECK((*lock)->unfinished() == row.folders);
            CHECK((*lock)->begin("/c"));
        }
        Paths more = row.folders;
        more.push_back("/c");
        const Paths found = unfinishedOf(locks, notes);
        for (const std::string& each : more) {
            CHECK(std::count(found.begin(), found.end(), each) == 1);
        }
        (*locks.take(notes))->finish();
        CHECK(folder.read(file) == run);
    }
    std::filesystem::remove(folder / file);
    CHECK(!locks.isUnfinished(notes));
    CHECK(!folder.exists(file));
    CHECK(unfinishedOf(locks, notes) == Paths{notes});
}

TEST_CASE("lock files are the owner's alone") {
    const TempFolder folder;
    FlockFolderLocks locks(folder / "a/locks", 0ms);
    REQUIRE(locks.take(folder.path()));
    const std::filesystem::path made = folder / "a/locks";
    const std::filesystem::path file = std::filesystem::directory_iterator(made)->path();
    using std::filesystem::perms;
    CHECK(std::filesystem::status(made).permissions() == perms::owner_all);
    CHECK(std::filesystem::status(file).permissions() == (perms::owner_read | perms::owner_write));
}

}  // namespace
}  // namespace tessaly::platform
