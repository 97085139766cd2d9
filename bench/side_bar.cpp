// SPDX-License-Identifier: MIT
// side_bar ROOT ROUNDS: reads a data folder, builds the sidebar's tree, changes one note at a time
// and brings the tree up to date. Prints a line of JSON: rows, bytes of memory for one, and
// milliseconds: of the processor for building by title and by date of change, of each update by
// kind of change. What the tree shows then is compared with one that is built anew.
#include "search/side_bar.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <fmt/ranges.h>

#include "base/thread_pool.h"
#include "data_folder.h"
#include "moment.h"
#include "platform/posix_file_system.h"
#include "store/note_loading.h"

namespace {

using namespace tessaly;
using bench::Moment;
using Note = store::GeneralNotes::Pointer;

template <class Snapshot>
std::shared_ptr<const Snapshot> shared(Snapshot snapshot) {
    return std::make_shared<const Snapshot>(std::move(snapshot));
}

search::SideBarNotes sideBarNotes(store::LoadedNotes& loaded) {
    return {shared(std::move(loaded.generalNotes)),
            shared(std::move(loaded.lineHashTags)),
            shared(std::move(loaded.lineAtTags)),
            {"Today", "Work"},
            base::SortType::modified};
}

std::size_t heldBytes() {
    const auto held = ::mallinfo2();
    return held.uordblks + held.hblkhd;
}

std::size_t rowsBelow(const search::SideBarItem::Rows& rows) {
    std::size_t count = rows.size();
    for (const auto& row : rows) {
        count += rowsBelow(row->subItems);
    }
    return count;
}

bool isSame(const search::SideBarItem::Rows& a, const search::SideBarItem::Rows& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x->text == y->text && x->displayText == y->displayText && x->count == y->count &&
               isSame(x->subItems, y->subItems);
    });
}

bench::Taken update(search::SideBar& bar, const search::SideBarNotes& notes) {
    const Moment begin = Moment::now();
    bar.update(notes);
    return Moment::now() - begin;
}

/// The median of three, of the processor.
double timeToBuild(search::SideBarNotes notes, base::SortType sortBy) {
    notes.sortBy = sortBy;
    std::array<double, 3> taken{};
    for (double& one : taken) {
        search::SideBar bar({});
        one = update(bar, notes).cpu;
    }
    std::sort(taken.begin(), taken.end());
    return taken[1];
}

/// Changes one note of those that a sidebar shows, in ways that the tree has to follow.
class Changes {
public:
    explicit Changes(search::SideBarNotes& notes) : _notes(notes) {
        notes.generalNotes->forEach([this](const Note& note) {
            (note->note.isFolder ? _folders : _files).push_back(note->note.filename);
        });
    }

    void title() {
        store::GeneralNote note = *anyNote();
        note.note.title = fmt::format("Changed {}", _engine() % 1000);
        note.note.contentChangedDate =
            base::Instant() + std::chrono::hours(24 * 365 * 60) + std::chrono::seconds(++_changes);
        put(std::move(note));
    }
    void tag() {
        const std::string name = fmt::format("#bench/{}", ++_changes);
        std::vector<store::TagCounts::Change> changes;
        for (const std::string_view tag : {std::string_view("#bench"), std::string_view(name)}) {
            const auto held = _notes.hashtags->find(tag);
            changes.push_back({tag, std::make_shared<const store::TagCount>(store::TagCount{
                                        std::string(tag), held ? held->notes + 1 : 1})});
        }
        _notes.hashtags = shared(_notes.hashtags->with(changes));
    }
    void move() {
        std::string& file = _files[_engine() % _files.size()];
        store::GeneralNote note = *_notes.generalNotes->find(file);
        const std::vector<store::GeneralNotes::Change> gone{{file, nullptr}};
        _notes.generalNotes = shared(_notes.generalNotes->with(gone));
        note.note.filename =
            fmt::format("{}/{}.txt", _folders[_engine() % _folders.size()], ++_changes);
        file = note.note.filename;
        put(std::move(note));
    }

private:
    Note anyNote() { return _notes.generalNotes->find(_files[_engine() % _files.size()]); }

    void put(store::GeneralNote note) {
        const auto item = shared(std::move(note));
        const std::vector<store::GeneralNotes::Change> changes{{item->note.filename, item}};
        _notes.generalNotes = shared(_notes.generalNotes->with(changes));
    }

    search::SideBarNotes& _notes;
    std::vector<std::string> _files;
    std::vector<std::string> _folders;
    std::mt19937 _engine{1};
    int _changes = 0;
};

std::vector<double> times(search::SideBar& bar, search::SideBarNotes& notes, int rounds,
                          Changes& changes, void (Changes::*change)()) {
    std::vector<double> taken;
    for (int round = 0; round < rounds; ++round) {
        (changes.*change)();
        taken.push_back(update(bar, notes).passed);
    }
    return taken;
}

void measure(search::SideBarNotes notes, int rounds) {
    const double byTitle = timeToBuild(notes, base::SortType::title);
    const double byDate = timeToBuild(notes, base::SortType::modified);
    const std::size_t before = heldBytes();
    search::SideBar bar({});
    bar.update(notes);
    const std::size_t bytes = heldBytes() - before;
    const std::size_t rows = rowsBelow(bar.items());
    fmt::print("{{\"rows\": {}, \"bytes\": {}, \"byTitle\": {:.3f}, \"byDate\": {:.3f}", rows,
               bytes / rows, byTitle, byDate);
    Changes changes(notes);
    fmt::print(", \"title\": {}", times(bar, notes, rounds, changes, &Changes::title));
    fmt::print(", \"tag\": {}", times(bar, notes, rounds, changes, &Changes::tag));
    fmt::print(", \"move\": {}", times(bar, notes, rounds, changes, &Changes::move));
    search::SideBar anew({});
    anew.update(notes);
    fmt::print(", \"isSame\": {}}}\n", isSame(bar.items(), anew.items()));
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc == 3 ? std::atoi(argv[2]) : 0;
    if (rounds <= 0) {
        fmt::print(stderr, "usage: side_bar ROOT ROUNDS\n");
        return 2;
    }
    platform::PosixFileSystem files;
    base::ThreadPool pool(std::max(2U, std::thread::hardware_concurrency()) - 1);
    bench::DataFolder folder(argv[1], files, pool);
    store::LoadedNotes loaded = store::loadNotes(folder.dataStore, pool, {});
    measure(sideBarNotes(loaded), rounds);
    std::fflush(stdout);
    std::_Exit(0);  // there is nothing to be written, and much to be taken apart
}
