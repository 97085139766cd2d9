// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "base/executor.h"
#include "search/found_rows.h"
#include "search/note_walk.h"
#include "search/searchable_notes.h"

namespace tessaly::search {

/// Asks all notes, on all threads, and makes rows of what they answer, in the notes' order. The
/// notes lie in runs; while some thread makes the rows of the runs that are next, the others go on
/// asking. Once there are rows enough, the rest is only counted. For one walk.
class SearchWalk {
public:
    /// Any thread; `matches` is emptied first, and what it has room for is used again.
    using Ask =
        std::function<void(const SearchedNote& note, Collect collect, NoteMatches& matches)>;

    struct Options {
        Ask ask;
        /// Whether the result is no longer wanted. Any thread, asked before each note.
        std::function<bool()> isStale;
        /// Called at most once, on one of the threads, when there are first rows to show and much
        /// is still to be looked at; may be empty.
        std::function<void()> onFirstRows;
    };

    /// All outlive the walk.
    SearchWalk(const NotesInOrder& notes, FoundRows& rows, const Options& options);

    /// False: it became stale, and the rows are not complete.
    bool run(base::Executor& executor);

    /// After a run to the end: the notes with matches.
    std::size_t matchedCount() const;
    NotesInOrder matchedNotes() const;

private:
    /// What a run of notes has given.
    struct Run {
        struct Found {
            const SearchableNote* note;
            NoteMatches matches;
        };
        bool isDone = false;
        std::vector<Found> found;
        NoteMatches counted;
    };
    /// A bit for each note of a run.
    using Bits = std::uint64_t;
    static_assert(NotesInOrder::largestChunk <= 64);

    Run asked(std::size_t index);
    void takeIn(std::size_t index, Run run);
    void addRows(Run run);
    void offerFirstRows(std::size_t runsLeft);

    const NotesInOrder& _notes;
    FoundRows& _rows;  ///< of the thread that makes rows, as are the next two
    const Options& _options;
    std::vector<Bits> _matched;  ///< by run, each of the thread that asks it
    std::size_t _found = 0;
    bool _hasOffered = false;
    std::atomic<bool> _isFull = false;  ///< for the runs behind those whose rows are made

    std::mutex _mutex;  ///< guards what follows
    std::vector<Run> _runs;
    std::size_t _next = 0;  ///< run, of which rows are to be made
    bool _isMakingRows = false;
};

}  // namespace tessaly::search
