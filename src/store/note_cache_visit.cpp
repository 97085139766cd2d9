// SPDX-License-Identifier: MIT
#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

#include "store/note_cache.h"

namespace tessaly::store {
namespace {

using base::NoteType;

bool contains(const std::vector<NoteType>& types, NoteType type) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

bool areInMemory(const std::vector<NoteType>& types) {
    return std::all_of(types.begin(), types.end(), [](NoteType type) {
        return type == NoteType::calendar || type == NoteType::note;
    });
}

// What was found of these kinds beside files that were read.
ReadReport ofTypes(const ReadReport& whole, const std::vector<NoteType>& types) {
    const auto isOf = [&](std::string_view path) {
        return contains(types, base::noteTypeOfFolder(path.substr(0, path.find('/'))));
    };
    ReadReport report;
    std::copy_if(whole.skipped.begin(), whole.skipped.end(), std::back_inserter(report.skipped),
                 [&](const SkippedFile& skipped) { return isOf(skipped.path); });
    std::copy_if(whole.conflictCopies.begin(), whole.conflictCopies.end(),
                 std::back_inserter(report.conflictCopies),
                 [&](const ConflictCopy& copy) { return isOf(copy.path); });
    std::copy_if(whole.temporaries.begin(), whole.temporaries.end(),
                 std::back_inserter(report.temporaries), isOf);
    return report;
}

/// What a visit goes through, all of one time.
class HeldNotes {
public:
    HeldNotes(std::shared_ptr<const GeneralNotes> general,
              std::shared_ptr<const CalendarNotes> calendar,
              std::shared_ptr<const StrayNotes> strays, const std::vector<NoteType>& types)
        : _general(std::move(general)),
          _calendar(std::move(calendar)),
          _strays(std::move(strays)),
          _generalRuns(contains(types, NoteType::note) ? _general->chunks() : 0),
          _calendarRuns(contains(types, NoteType::calendar) ? _calendar->chunks() : 0),
          _hasStrays(contains(types, NoteType::calendar)) {}

    /// The notes lie in so many runs.
    std::size_t runs() const { return _generalRuns + _calendarRuns + (_hasStrays ? 1 : 0); }

    template <class VisitNote, class VisitFolder>
    void visitRun(std::size_t run, const VisitNote& visitNote,
                  const VisitFolder& visitFolder) const {
        if (run < _generalRuns) {
            for (const auto& item : _general->chunk(run)) {
                const LoadedNote& note = item->note;
                if (note.isFolder) {
                    visitFolder(note.filename);
                } else {
                    visitNote({NoteType::note, note.filename, note.content, item->stamp});
                }
            }
        } else if (run < _generalRuns + _calendarRuns) {
            for (const auto& note : _calendar->chunk(run - _generalRuns)) {
                if (note->stamp) {
                    visitNote(
                        {NoteType::calendar, note->model.filename, note->content, *note->stamp});
                }
            }
        } else {
            for (const auto& [filename, stray] : *_strays) {
                visitNote({NoteType::calendar, filename, stray.content, stray.stamp});
            }
        }
    }

private:
    const std::shared_ptr<const GeneralNotes> _general;
    const std::shared_ptr<const CalendarNotes> _calendar;
    const std::shared_ptr<const StrayNotes> _strays;
    const std::size_t _generalRuns;
    const std::size_t _calendarRuns;
    const bool _hasStrays;
};

}  // namespace

std::size_t NoteCache::workers() const {
    return NoteReader(_tools.store, _tools.executor).workers();
}

ReadReport NoteCache::visit(const NoteReader::Options& options,
                            const NoteReader::Visit& visit) const {
    if (_initialUpdateDone && areInMemory(options.types)) {
        return visitMemory(options, visit);
    }
    auto index = _tools.index ? _tools.index() : nullptr;
    return NoteReader(_tools.store, _tools.executor, std::move(index)).readAll(options, visit);
}

ReadReport NoteCache::visitMemory(const NoteReader::Options& options,
                                  const NoteReader::Visit& visit) const {
    const HeldNotes notes(_generalNotes.get(), _calendarNotes.get(), _strays.get(), options.types);
    std::atomic<std::size_t> next = 0;
    std::vector<ReadReport> visited(workers());
    base::parallelFor(_tools.executor, workers(), [&](std::size_t worker) {
        ReadReport& mine = visited[worker];
        const auto visitNote = [&](const NoteFile& file) {
            mine.cancelled = mine.cancelled || (options.cancelled != nullptr && *options.cancelled);
            if (!mine.cancelled) {
                visit(worker, file);
                ++mine.files;
                mine.bytes += file.bytes.size();
            }
        };
        const auto visitFolder = [&](std::string_view folder) {
            if (options.visitFolder) {
                options.visitFolder(worker, NoteType::note, folder);
            }
        };
        for (auto run = next.fetch_add(1); run < notes.runs(); run = next.fetch_add(1)) {
            notes.visitRun(run, visitNote, visitFolder);
        }
    });
    ReadReport report = ofTypes(*_report.get(), options.types);
    for (const ReadReport& part : visited) {
        report.files += part.files;
        report.bytes += part.bytes;
        report.cancelled |= part.cancelled;
    }
    return report;
}

}  // namespace tessaly::store
