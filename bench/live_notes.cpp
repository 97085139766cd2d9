// SPDX-License-Identifier: MIT
// live_notes ROOT: holds a data folder's notes in memory and watches it, and does what is asked for
// on standard input, a line each; a line of JSON with the times in milliseconds comes back,
// passed and of the processor. The
// notes of ROOT are rewritten: give a copy.
//   edit BYTES EDITS NOTES  EDITS times one of NOTES notes, chosen at random, gets another text of
//                           some BYTES bytes by a rename over it; from the batch to the snapshot
//   many NOTES              so many notes at once; the batch, and reading the same files
//   rescan                  all folders are looked at; nothing has changed
// live_notes ROOT look: looks at all folders once, compares with nothing, and exits.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fmt/core.h>
#include <fmt/ranges.h>

#include "base/shared_text.h"
#include "base/thread_pool.h"
#include "live_folder.h"
#include "moment.h"
#include "platform/posix_file_system.h"
#include "platform/system_clock.h"
#include "store/paths.h"
#include "sync/current_notes.h"
#include "sync/survey.h"

namespace {

using namespace tessaly;
using namespace std::chrono_literals;
using bench::LiveFolder;

constexpr std::uint64_t smallestNote = 300;
constexpr std::uint64_t largestNote = 8 << 10;
/// After so long a file that was changed is not taken for one that is just being changed.
constexpr auto tick = 30ms;
/// Of files that a thread reads at a time.
constexpr std::size_t filesInChunk = 32;

/// Notes of ordinary size; those that test the parser lie in a folder of their own.
std::vector<std::string> ordinaryNotes(const store::NoteCache& cache) {
    std::vector<std::string> filenames;
    cache.generalNotes()->forEach([&filenames](const auto& note) {
        const bool isOrdinary = !note->note.isFolder && !note->note.content.view().empty() &&
                                note->stamp.size >= smallestNote &&
                                note->stamp.size <= largestNote &&
                                !note->note.filename.starts_with("Nasty/");
        if (isOrdinary) {
            filenames.push_back(note->note.filename);
        }
    });
    return filenames;
}

/// Time passed and time of the processor.
std::string json(const bench::Taken& taken) {
    return fmt::format("[{}, {}]", taken.passed, taken.cpu);
}

class Session {
public:
    explicit Session(const std::string& root)
        : _live(root), _ordinary(ordinaryNotes(_live.cache())) {
        fmt::print("{{\"ordinary\": {}, \"watched\": {}}}\n", _ordinary.size(),
                   _live.watchedFolders());
    }

    void edit(std::istream& words) {
        std::size_t bytes = 0;
        std::size_t edits = 0;
        std::size_t notes = 0;
        words >> bytes >> edits >> notes;
        const std::vector<std::string> chosen = choose(notes);
        std::vector<double> times;
        std::size_t seen = 0;
        for (std::size_t index = 0; index < edits; ++index) {
            const std::string& filename = chosen[index % chosen.size()];
            const std::string text = otherText(filename, bytes);
            _live.settle();
            _live.expect({filename});
            rewrite(filename, text);
            _live.waitUntilNoticed(tick);
            if (const auto time = _live.batch()) {
                times.push_back(time->passed);
            }
            seen += holds(filename, text);
        }
        fmt::print("{{\"times\": {}, \"seen\": {}}}\n", times, seen);
    }

    void many(std::istream& words) {
        std::size_t notes = 0;
        words >> notes;
        const std::vector<std::string> chosen = choose(notes);
        std::vector<std::string> texts;
        for (const std::string& filename : chosen) {
            texts.push_back(otherText(filename, 0));
        }
        _live.settle();
        _live.expect({chosen.begin(), chosen.end()});
        for (std::size_t index = 0; index < chosen.size(); ++index) {
            rewrite(chosen[index], texts[index]);
        }
        _live.waitUntilNoticed(100ms);
        const bool readsFirst = _rounds++ % 2 == 1;
        const auto before = readsFirst ? timeToRead(chosen) : bench::Taken();
        const auto batch = _live.batch();
        _live.settle();
        const auto read = readsFirst ? before : timeToRead(chosen);
        std::size_t seen = 0;
        for (std::size_t index = 0; index < chosen.size(); ++index) {
            seen += holds(chosen[index], texts[index]);
        }
        fmt::print("{{\"batch\": {}, \"read\": {}, \"seen\": {}}}\n",
                   json(batch.value_or(bench::Taken())), json(read), seen);
    }

    void rescan(std::istream&) {
        _live.settle();
        const std::size_t before = _live.files().surveys();
        const auto taken = _live.rescan();
        const std::size_t surveys = _live.files().surveys() - before;
        fmt::print("{{\"rescan\": {}, \"folders\": {}}}\n", json(taken), surveys);
    }

private:
    std::vector<std::string> choose(std::size_t count) {
        std::vector<std::string> chosen;
        std::sample(_ordinary.begin(), _ordinary.end(), std::back_inserter(chosen), count, _random);
        return chosen;
    }

    /// The note's text with a new task and a new tag, repeated or cut to some `bytes` bytes; 0: as
    /// long as it is.
    std::string otherText(const std::string& filename, std::size_t bytes) {
        const auto note = _live.cache().generalNotes()->find(filename);
        const std::string_view old = note->note.content;
        ++_edits;  // each to another day: of the tasks for a day there are few
        std::string text = fmt::format("# Edited\n* another task #edited/{} >2020-{:02}-{:02}\n",
                                       _edits, _edits / 28 % 12 + 1, _edits % 28 + 1);
        do {
            text.append(old).append("\n");
        } while (text.size() < bytes);
        if (bytes > 0) {
            text.resize(std::min(text.size(), text.rfind('\n', bytes) + 1));
        }
        return text;
    }

    /// As a sync client does it: the new text comes under a hidden name, which becomes the note's.
    void rewrite(const std::string& filename, std::string_view text) const {
        const std::filesystem::path path = _live.pathOf(filename);
        const std::filesystem::path temporary = path.parent_path() / ".arriving";
        std::ofstream(temporary, std::ios::binary) << text;
        std::filesystem::rename(temporary, path);
    }

    bool holds(const std::string& filename, std::string_view text) const {
        const auto note = _live.cache().generalNotes()->find(filename);
        return note != nullptr && note->note.content.view() == text;
    }

    /// Of reading these files into memory, folder by folder, as all are read at start.
    bench::Taken timeToRead(std::vector<std::string> filenames);

    LiveFolder _live;
    const std::vector<std::string> _ordinary;
    std::mt19937 _random{1};
    std::size_t _edits = 0;
    std::size_t _rounds = 0;
};

struct Chunk {
    std::string folder;
    std::vector<ports::FolderEntry> files;
};

std::vector<Chunk> chunksOf(std::vector<std::string> paths) {
    std::sort(paths.begin(), paths.end(), [](const std::string& a, const std::string& b) {
        return std::pair(store::parentOf(a), a) < std::pair(store::parentOf(b), b);
    });
    std::vector<Chunk> chunks;
    for (const std::string& path : paths) {
        const std::string folder = store::parentOf(path);
        if (chunks.empty() || chunks.back().folder != folder ||
            chunks.back().files.size() == filesInChunk) {
            chunks.push_back({folder, {}});
        }
        chunks.back().files.push_back(
            {std::string(store::lastComponent(path)), ports::FolderEntry::Kind::file});
    }
    return chunks;
}

bench::Taken Session::timeToRead(std::vector<std::string> filenames) {
    for (std::string& filename : filenames) {
        filename = _live.pathOf(filename);
    }
    const std::vector<Chunk> chunks = chunksOf(std::move(filenames));
    struct Worker {
        std::vector<base::SharedText> kept;
        base::TextArena texts;
    };
    std::vector<Worker> workers(_live.executor().width() + 1);
    std::atomic<std::size_t> next = 0;
    // As the batch: from a job of the pool, so that as many threads take part.
    _live.executor().post([&] {
        base::parallelFor(_live.executor(), workers.size(), [&](std::size_t index) {
            Worker& mine = workers[index];
            for (std::size_t turn = next++; turn < chunks.size(); turn = next++) {
                (void)_live.files().readEach(chunks[turn].folder, chunks[turn].files,
                                             [&mine](const ports::FileRead& file) {
                                                 mine.kept.push_back(mine.texts.keep(file.bytes));
                                             });
            }
        });
    });
    return _live.executor().waitUntilIdle() - _live.executor().busySince();
}

int lookOnce(const std::string& root) {
    platform::PosixFileSystem files;
    platform::SystemClock clock;
    base::ThreadPool pool{std::max(1U, std::thread::hardware_concurrency() - 1)};
    const auto began = clock.now();
    const std::string resolved = files.resolve(root).value();
    sync::CurrentNotes notes;
    notes.reset(resolved);
    auto found = sync::Survey(files, pool, resolved).trees({"Calendar", "Notes"});
    for (auto& folder : found.folders) {
        (void)notes.replaceFolder(folder.path, std::move(folder.entries), began);
    }
    fmt::print("{{\"files\": {}}}\n", notes.files());
    std::fflush(stdout);
    std::_Exit(0);  // who watches takes the notes apart when nobody waits any more
}

struct Command {
    std::string_view name;
    void (Session::*run)(std::istream& words);
};
constexpr Command commands[] = {
    {"edit", &Session::edit}, {"many", &Session::many}, {"rescan", &Session::rescan}};

int serve(const std::string& root) {
    Session session(root);
    std::fflush(stdout);
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string name;
        words >> name;
        const auto command = std::find_if(std::begin(commands), std::end(commands),
                                          [&name](const Command& row) { return row.name == name; });
        if (command == std::end(commands)) {
            fmt::print(stderr, "live_notes: unknown request: {}\n", line);
            return 2;
        }
        (session.*command->run)(words);
        std::fflush(stdout);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && argv[2] == std::string_view("look")) {
        return lookOnce(argv[1]);
    }
    if (argc != 2) {
        fmt::print(stderr, "usage: live_notes ROOT [look]\n");
        return 2;
    }
    return serve(std::filesystem::absolute(argv[1]));
}
