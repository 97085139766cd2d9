// SPDX-License-Identifier: MIT
#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <doctest/doctest.h>

#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "platform/read_and_append.h"
#include "store/history.h"
#include "store/safe_files.h"
#include "support/temp_folder.h"

namespace tessaly::tests {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::steady_clock;
using Lines = std::vector<std::string>;

/// A process of ours as far as locks and files can tell.
struct Writer {
    explicit Writer(const TempFolder& folder)
        : locks(folder / "locks"),
          history({files, changes, locks, clock}, folder / "history"),
          safe({files, changes, locks, history}) {}

    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks;
    platform::FixedClock clock{platform::parseTime("2019-03-05T14:07:33").value()};
    store::History history;
    store::SafeFiles safe;
};

/// Adds lines until `end`; returns those of which it was told that they are there.
Lines addLines(Writer& writer, const TempFolder& folder, const std::string& name, int count,
               Time::time_point end) {
    Lines added;
    for (int i = 0; i < count && Time::now() < end; ++i) {
        const std::string line = name + " " + std::to_string(i);
        const auto edited = writer.safe.edit(
            folder / "data", folder / "data/Notes/note.txt",
            [&](std::string_view bytes) {
                return base::Result<std::optional<std::string>>(std::string(bytes) + line + "\n");
            },
            store::ChangeCause::added);
        if (edited) {
            added.push_back(line);
        }
    }
    return added;
}

void insertLines(std::set<std::string>& lines, const std::string& text) {
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.insert(line);
    }
}

}  // namespace

TEST_CASE("concurrent edits: every line of every writer is in the note or in the history") {
    constexpr int writers = 3;
    constexpr int linesEach = 200;
    TempFolder folder;
    const std::string note = folder.write("data/Notes/note.txt", "");
    std::vector<std::unique_ptr<Writer>> ours;
    for (int i = 0; i < writers; ++i) {
        ours.push_back(std::make_unique<Writer>(folder));
    }
    // Disks differ; where one is slow, fewer lines tell as much. A file that is written to faster
    // than the disk takes our texts would not stand still for us.
    const auto start = Time::now();
    REQUIRE(addLines(*ours[0], folder, "first", 1, start + 10s).size() == 1);
    const auto pause = std::clamp<Time::duration>(2 * (Time::now() - start), 3ms, 100ms);
    const auto end = start + 2s;

    std::vector<Lines> added(writers + 1);
    std::atomic<int> running = writers;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < writers; ++i) {
        threads.emplace_back([&, i] {
            added[i] = addLines(*ours[i], folder, "writer " + std::to_string(i), linesEach, end);
            --running;
        });
    }
    threads.emplace_back([&] {
        for (int i = 0; running > 0; ++i) {
            const std::string line = "outsider " + std::to_string(i);
            appendTo(note, line + "\n");
            added.back().push_back(line);
            std::this_thread::sleep_for(pause);
        }
    });
    for (std::thread& thread : threads) {
        thread.join();
    }

    Writer reader(folder);
    std::set<std::string> anywhere;
    insertLines(anywhere, folder.read("data/Notes/note.txt"));
    const auto entries = reader.history.entries().value();
    for (const store::HistoryEntry& entry : entries) {
        insertLines(anywhere, reader.history.text(entry).value());
    }
    CHECK(added[0].size() + added[1].size() + added[2].size() > 0);
    for (const Lines& lines : added) {
        for (const std::string& line : lines) {
            CAPTURE(line);
            CHECK(anywhere.contains(line));
        }
    }
    CHECK(folder.names("data/Notes") == Lines{"note.txt"});
}

}  // namespace tessaly::tests
