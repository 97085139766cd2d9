// SPDX-License-Identifier: MIT
#include "store/note_loading.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "store/note_document.h"
#include "store/note_names.h"
#include "store/paths.h"
#include "store/tag_index.h"

namespace tessaly::store {
namespace {

/// What one worker has read.
struct Part {
    LoadingTools tools;
    std::vector<GeneralNotes::Pointer> generalNotes;
    std::vector<CalendarNotes::Pointer> calendarNotes;
    StrayNotes strays;
    TagTally atTags;
    TagTally hashTags;

    void addGeneralNote(const NoteFile& file, base::SharedText content,
                        const CountSettings& settings) {
        generalNotes.push_back(generalNote(std::string(file.filename), std::move(content),
                                           file.stamp, settings, tools.scanner));
        atTags.add(generalNotes.back()->note.atTags);
        hashTags.add(generalNotes.back()->note.hashTags);
    }

    void addCalendarNote(const NoteFile& file, base::SharedText content,
                         const CountSettings& settings) {
        calendarNotes.push_back(calendarNote(std::string(file.filename), std::move(content),
                                             file.stamp, settings, tools.scanner));
        atTags.add(calendarNotes.back()->model.atTags);
        hashTags.add(calendarNotes.back()->model.hashTags);
    }

    void add(const NoteFile& file, const CountSettings& settings) {
        base::SharedText content =
            tools.texts.keep(decodedText(file.bytes).value_or(std::string_view()));
        if (file.type == base::NoteType::note) {
            addGeneralNote(file, std::move(content), settings);
        } else if (dayOfCalendarFilename(file.filename)) {
            addCalendarNote(file, std::move(content), settings);
        } else {
            strays.emplace(file.filename, StrayNote{std::move(content), file.stamp});
        }
    }
};

/// Items with their keys beside them, so that sorting does not run after every pointer.
template <class Snapshot, class Order>
struct Keyed {
    typename Order::Key key;
    typename Snapshot::Pointer item;

    bool operator<(const Keyed& other) const { return key < other.key; }
};

/// Each part is sorted by a thread of its own, then they are merged two by two.
template <class Snapshot, class Order>
Snapshot sorted(std::vector<Part>& parts, std::vector<typename Snapshot::Pointer> Part::*items,
                base::Executor& executor) {
    using Items = std::vector<Keyed<Snapshot, Order>>;
    std::vector<Items> runs(parts.size());
    base::parallelFor(executor, parts.size(), [&](std::size_t index) {
        auto& own = parts[index].*items;
        runs[index].reserve(own.size());
        for (auto& item : own) {
            const auto key = Order::keyOf(*item);
            runs[index].push_back({key, std::move(item)});
        }
        own = {};
        std::sort(runs[index].begin(), runs[index].end());
    });
    Items all = std::move(runs.front());
    for (Items& run : std::span(runs).subspan(1)) {
        Items both;
        both.reserve(all.size() + run.size());
        std::merge(std::make_move_iterator(all.begin()), std::make_move_iterator(all.end()),
                   std::make_move_iterator(run.begin()), std::make_move_iterator(run.end()),
                   std::back_inserter(both));
        all = std::move(both);
        run = {};
    }
    std::vector<typename Snapshot::Pointer> pointers;
    pointers.reserve(all.size());
    for (auto& keyed : all) {
        pointers.push_back(std::move(keyed.item));
    }
    return Snapshot(std::move(pointers));
}

TagCounts joinedTags(std::vector<Part>& parts, TagTally Part::*tags) {
    TagTally all = std::move(parts.front().*tags);
    for (const Part& part : std::span(parts).subspan(1)) {
        all.join(part.*tags);
    }
    return all.counts();
}

}  // namespace

LoadedNotes loadNotes(const DataStore& store, base::Executor& executor,
                      const CountSettings& settings, NoteReader::Options options,
                      std::shared_ptr<const NoteIndex> index) {
    if (index) {
        index->forgetRecords();
    }
    NoteReader reader(store, executor, std::move(index));
    std::vector<Part> parts(reader.workers());
    options.types = {base::NoteType::calendar, base::NoteType::note};
    options.visitFolder = [&, told = std::move(options.visitFolder)](
                              std::size_t worker, base::NoteType type, std::string_view folder) {
        if (type == base::NoteType::note) {
            parts[worker].generalNotes.push_back(folderOfNotes(std::string(folder)));
        }
        if (told) {
            told(worker, type, folder);
        }
    };
    LoadedNotes notes;
    notes.report = reader.readAll(options, [&](std::size_t worker, const NoteFile& file) {
        parts[worker].add(file, settings);
    });
    if (notes.report.cancelled) {
        return notes;
    }
    notes.generalNotes = sorted<GeneralNotes, ByFilename>(parts, &Part::generalNotes, executor);
    notes.calendarNotes = sorted<CalendarNotes, ByDay>(parts, &Part::calendarNotes, executor);
    notes.lineAtTags = joinedTags(parts, &Part::atTags);
    notes.lineHashTags = joinedTags(parts, &Part::hashTags);
    for (Part& part : parts) {
        notes.strays.merge(part.strays);
    }
    return notes;
}

CalendarNotes loadDays(const DataStore& store, base::Day first, int count,
                       const CountSettings& settings) {
    grammar::NoteScanner scanner;
    std::vector<CalendarNotes::Pointer> notes;
    for (int day = 0; day < count; ++day) {
        const std::string name = calendarFilename(base::addDays(first, day));
        const auto path = store.pathOf(base::NoteType::calendar, name);
        const auto file =
            path ? store.files().read(*path) : base::Result<ports::FileContents>(path.failure());
        if (file) {
            const auto text = decodedText(file->bytes).value_or(std::string_view());
            notes.push_back(calendarNote(name, base::SharedText(std::string(text)), file->stamp,
                                         settings, scanner));
        }
    }
    return CalendarNotes(std::move(notes));
}

}  // namespace tessaly::store
