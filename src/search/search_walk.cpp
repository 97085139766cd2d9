// SPDX-License-Identifier: MIT
#include "search/search_walk.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <span>
#include <string_view>
#include <utility>

namespace tessaly::search {
namespace {

/// A screen's worth and more.
constexpr std::size_t firstRows = 100;
/// Runs of notes that are quicker asked than a list is drawn.
constexpr std::size_t fewRuns = 64;

constexpr std::size_t cacheLine = 64;
/// Of a text; most are shorter.
constexpr std::size_t textFetched = 4096;

// GCC takes a function that only fetches for one without any effect, and leaves out the call: hence
// no calls.
[[gnu::always_inline]] inline void fetch(const void* start, std::size_t size) {
    for (std::size_t at = 0; at < size; at += cacheLine) {
        __builtin_prefetch(static_cast<const char*>(start) + at);
    }
}

/// The notes lie anywhere in memory, and a search spends little time on each: what the next ones
/// need is fetched meanwhile, their texts once it is known where these are.
[[gnu::always_inline]] inline void fetchAhead(std::span<const NotesInOrder::Pointer> notes,
                                              std::size_t current) {
    constexpr std::size_t notesAhead = 6;
    constexpr std::size_t textsAhead = 2;
    if (current + notesAhead < notes.size()) {
        fetch(notes[current + notesAhead].get(), sizeof(SearchableNote));
    }
    if (current + textsAhead < notes.size()) {
        const std::string_view text = notes[current + textsAhead]->comparedText();
        fetch(text.data(), std::min(text.size(), textFetched));
    }
}

void addCounts(NoteMatches& sum, const NoteMatches& matches) {
    sum.rows += matches.rows;
    sum.taskRows += matches.taskRows;
    sum.textRows += matches.textRows;
    sum.textTaskRows += matches.textTaskRows;
}

}  // namespace

SearchWalk::SearchWalk(const NotesInOrder& notes, FoundRows& rows, const Options& options)
    : _notes(notes),
      _rows(rows),
      _options(options),
      _matched(notes.chunks()),
      _runs(notes.chunks()) {}

bool SearchWalk::run(base::Executor& executor) {
    base::parallelFor(executor, _notes.chunks(), [this](std::size_t index) {
        if (!_options.isStale()) {
            takeIn(index, asked(index));
        }
    });
    return !_options.isStale();
}

std::size_t SearchWalk::matchedCount() const {
    return std::accumulate(_matched.begin(), _matched.end(), std::size_t{0},
                           [](std::size_t sum, Bits bits) {
                               return sum + static_cast<std::size_t>(std::popcount(bits));
                           });
}

NotesInOrder SearchWalk::matchedNotes() const {
    std::vector<NotesInOrder::Pointer> notes;
    for (std::size_t index = 0; index < _matched.size(); ++index) {
        const auto run = _notes.chunk(index);
        for (Bits bits = _matched[index]; bits != 0; bits &= bits - 1) {
            notes.push_back(run[static_cast<std::size_t>(std::countr_zero(bits))]);
        }
    }
    return NotesInOrder(std::move(notes));
}

SearchWalk::Run SearchWalk::asked(std::size_t index) {
    const auto collect = _isFull ? Collect::counts : Collect::rows;
    Run run;
    run.isDone = true;
    NoteMatches matches;
    const auto notes = _notes.chunk(index);
    for (std::size_t place = 0; place < notes.size(); ++place) {
        if (_options.isStale()) {
            break;
        }
        fetchAhead(notes, place);
        const SearchableNote* note = notes[place].get();
        _options.ask(note->view(), collect, matches);
        if (matches.rows + matches.textRows == 0) {
            continue;
        }
        _matched[index] |= Bits{1} << place;
        if (collect == Collect::counts) {
            addCounts(run.counted, matches);
        } else {
            run.found.push_back({note, std::move(matches)});
        }
    }
    return run;
}

// One thread at a time makes rows; the others leave theirs to it.
void SearchWalk::takeIn(std::size_t index, Run run) {
    std::unique_lock lock(_mutex);
    _runs[index] = std::move(run);
    if (std::exchange(_isMakingRows, true)) {
        return;
    }
    while (_next < _runs.size() && _runs[_next].isDone) {
        Run next = std::move(_runs[_next++]);
        const std::size_t left = _runs.size() - _next;
        lock.unlock();
        addRows(std::move(next));
        offerFirstRows(left);
        lock.lock();
    }
    _isMakingRows = false;
}

void SearchWalk::addRows(Run run) {
    for (Run::Found& found : run.found) {
        if (_options.isStale()) {
            return;
        }
        _found += found.matches.rows;
        _rows.add(found.note->view(), std::move(found.matches));
    }
    _rows.count(run.counted);
    _isFull = _rows.isFull();
}

void SearchWalk::offerFirstRows(std::size_t runsLeft) {
    const bool isWorthIt =
        runsLeft > fewRuns && _rows.areSure() && (_found >= firstRows || _rows.isFull());
    if (isWorthIt && !_hasOffered && _options.onFirstRows && !_options.isStale()) {
        _hasOffered = true;
        _options.onFirstRows();
    }
}

}  // namespace tessaly::search
