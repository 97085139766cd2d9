// SPDX-License-Identifier: MIT
// load_notes ROOT read|load|day [--needle WORD]: reads a data folder in one of three depths and
// prints what it found, so that each depth can be timed as a whole process.
//   read  the files' bytes are kept, and not looked at
//   load  every note is parsed, as the program does at start
//   day   the tasks that have to do with days are gathered
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <future>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fmt/core.h>

#include "base/day.h"
#include "base/shared_text.h"
#include "base/thread_pool.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "platform/system_clock.h"
#include "store/data_store.h"
#include "store/day_tasks.h"
#include "store/note_cache.h"
#include "store/note_reader.h"

namespace {

using namespace tessaly;
using namespace std::chrono_literals;

constexpr base::Day lastDayOfCorpus = 2019y / 12 / 31;

struct Request {
    store::DataStore& store;
    base::Executor& executor;
    ports::Clock& clock;
    std::string_view needle;  ///< in lower case; empty: none is sought
};

void printRead(const store::ReadReport& report) {
    fmt::print("\"files\": {}, \"bytes\": {}, \"skipped\": {}", report.files, report.bytes,
               report.skipped.size());
}

/// Ends the process while the notes are still held: a program that works with them takes them apart
/// when nobody waits any more.
[[noreturn]] void finish() {
    fmt::print("}}\n");
    std::fflush(stdout);
    std::_Exit(0);
}

void readOnly(const Request& request) {
    struct Kept {
        std::string filename;
        base::SharedText bytes;
    };
    struct Worker {
        std::vector<Kept> kept;
        base::TextArena texts;
    };
    store::NoteReader reader(request.store, request.executor);
    std::vector<Worker> workers(reader.workers());
    const store::ReadReport report =
        reader.readAll({}, [&workers](std::size_t worker, const store::NoteFile& file) {
            Worker& mine = workers[worker];
            mine.kept.push_back({std::string(file.filename), mine.texts.keep(file.bytes)});
        });
    printRead(report);
    finish();
}

std::string asciiLower(std::string text) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    std::transform(text.begin(), text.end(), text.begin(), lower);
    return text;
}

std::size_t notesWith(std::string_view needle, const store::NoteCache& notes) {
    std::size_t count = 0;
    const auto countIn = [&](std::string_view content) {
        count += asciiLower(std::string(content)).find(needle) != std::string::npos;
    };
    notes.generalNotes()->forEach([&](const auto& note) { countIn(note->note.content); });
    notes.calendarNotes()->forEach([&](const auto& note) { countIn(note->content); });
    return count;
}

void load(const Request& request) {
    store::NoteCache notes({request.store,
                            request.executor,
                            request.clock,
                            [] { return store::CountSettings(); },
                            {}});
    std::promise<void> loaded;
    notes.setOnHasLoaded([&loaded] { loaded.set_value(); });
    notes.load();
    loaded.get_future().wait();
    std::array<std::size_t, 4> sums{};
    notes.calendarNotes()->forEach([&](const auto& note) {
        sums[0] += note->model.numOpenTodos;
        sums[1] += note->model.numScheduledTodos;
        sums[2] += note->model.numDoneTodos;
        sums[3] += note->model.numCancelledTodos;
    });
    printRead(*notes.loadReport());
    fmt::print(
        ", \"openInCalendar\": {}, \"scheduledInCalendar\": {}, \"doneInCalendar\": {}, "
        "\"cancelledInCalendar\": {}",
        sums[0], sums[1], sums[2], sums[3]);
    if (!request.needle.empty()) {
        fmt::print(", \"needle\": {}", notesWith(request.needle, notes));
    }
    finish();
}

void gatherDays(const Request& request) {
    struct Worker {
        store::DayTasks tasks;
        grammar::NoteScanner scanner;
    };
    store::NoteReader reader(request.store, request.executor);
    std::vector<Worker> workers(reader.workers());
    const store::ReadReport report =
        reader.readAll({}, [&workers](std::size_t worker, const store::NoteFile& file) {
            Worker& mine = workers[worker];
            mine.tasks.add(file.type, file.filename, file.bytes, {}, mine.scanner);
        });
    for (std::size_t worker = 1; worker < workers.size(); ++worker) {
        workers[0].tasks.join(std::move(workers[worker].tasks));
    }
    printRead(report);
    fmt::print(", \"ofToday\": {}, \"scheduledToToday\": {}, \"overdue\": {}",
               workers[0].tasks.ofNote(lastDayOfCorpus).size(),
               workers[0].tasks.scheduledTo(lastDayOfCorpus).size(),
               workers[0].tasks.overdue(lastDayOfCorpus, request.executor, 0).total);
    finish();
}

struct Mode {
    std::string_view name;
    void (*run)(const Request&);
    unsigned idleThreads;  ///< of ours, that do not work along with the pool
};
constexpr Mode modes[] = {{"read", readOnly, 0}, {"load", load, 1}, {"day", gatherDays, 0}};

const Mode* findMode(std::string_view name) {
    const auto found = std::find_if(std::begin(modes), std::end(modes),
                                    [name](const Mode& mode) { return mode.name == name; });
    return found == std::end(modes) ? nullptr : found;
}

store::DataStore::Roots rootsFor(const char* root) {
    store::DataStore::Roots roots;
    roots.dataFolder = root;
    return roots;
}

/// A data folder, with all that its owner wants; nothing is written here.
struct DataFolder {
    DataFolder(const char* root, unsigned idleThreads)
        : pool(std::max(2U, std::thread::hardware_concurrency()) - 1 + idleThreads),
          roots(rootsFor(root)) {}

    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{"/nowhere"};
    platform::SystemClock clock;
    base::ThreadPool pool;
    store::History history{{files, changes, locks, clock}, "/nowhere"};
    store::SafeFiles safeFiles{{files, changes, locks, history}};
    store::DataStore::Roots roots;
    store::DataStore dataStore{{files, changes, safeFiles, {}, clock, pool}, roots};
};

}  // namespace

int main(int argc, char** argv) {
    const Mode* mode = argc == 3 || (argc == 5 && std::strcmp(argv[3], "--needle") == 0)
                           ? findMode(argv[2])
                           : nullptr;
    if (mode == nullptr) {
        fmt::print(stderr, "usage: load_notes ROOT read|load|day [--needle WORD]\n");
        return 2;
    }
    DataFolder folder(argv[1], mode->idleThreads);
    fmt::print("{{");
    mode->run(
        {folder.dataStore, folder.pool, folder.clock, argc == 5 ? argv[4] : std::string_view{}});
}
