// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/executor.h"
#include "base/gate.h"
#include "base/weekday.h"
#include "calendar/cached_calendar_item.h"
#include "grammar/date_string_helper.h"
#include "ports/clock.h"
#include "search/filter_item.h"
#include "search/narrowing.h"
#include "search/search_query.h"
#include "search/search_results.h"
#include "search/searchable_notes.h"
#include "store/note_cache.h"

namespace tessaly::search {

/// The events and reminders that occur from `first` to `last`. Any thread.
using CalendarItemsBetween =
    std::function<std::vector<calendar::CachedCalendarItem>(base::Day first, base::Day last)>;

/// What a search depends on beside its query.
struct SearchSettings {
    base::SortType sortBy = base::SortType::modified;
    base::DayOfWeek firstDayOfWeek = base::DayOfWeek::monday;
    std::size_t maxRecents = 20;
    store::CountSettings counting;
};

/// Answers the search field of the list of notes, out of the note cache. One instance serves one
/// list. Every keystroke is a request; a newer one ends the older ones, within a note's time. None
/// of their closures is called from then on, but one may be on its way: who hands rows to another
/// thread compares the request's id with `searchId` there. An exception that leaves a closure is
/// logged and ends its request.
class SearchHelper {
public:
    /// All outlive the helper.
    struct Tools {
        store::NoteCache& cache;
        base::Executor& executor;
        ports::Clock& clock;
        const grammar::DateStringHelper& names;
        std::function<SearchSettings()> settings;  ///< asked for each request, on any thread
        ParseDay parseDay;                         ///< on any thread
        CalendarItemsBetween calendarItems = {};   ///< may be empty: no events and reminders
    };

    /// Rows of a request: `query` exactly as it was given; of a list that is not final the first
    /// rows, with a `loading` row at the end, the rest of the notes being still to be looked at.
    /// On the executor.
    using Results =
        std::function<void(const std::string& query, const SearchResults& results, bool isFinal)>;
    using Finished = std::function<void()>;

    struct Request {
        std::string query;
        Filter filter;
        std::size_t mostRows = 200;  ///< delivered; 0: all. All are counted
        Results results = {};        ///< may be empty
        Finished finished = {};      ///< once, behind the last results; may be empty
    };

    explicit SearchHelper(Tools tools);
    /// Ends what runs and waits for it. Not from one of its closures.
    ~SearchHelper();

    /// Starts a search and returns at once. `requestId` is a value that `searchId` was incremented
    /// to for it. A query without text searches `//recent`; see docs/search.md for the rest.
    void search(std::int64_t requestId, Request request);

    /// Makes the cache's notes ready ahead of the first key, or after changes. Returns at once.
    void prepare();

    /// The newest request; who starts one increments it first, and so ends those before.
    std::atomic<std::int64_t> searchId{0};
    /// The newest request of a list beside the main one; the helper does not look at it.
    std::atomic<std::int64_t> searchId2{0};

    /// The days that search options offer: from 1423 before the construction to 3650 after it.
    base::Day searchStart() const { return _searchStart; }
    base::Day searchEnd() const { return _searchEnd; }

private:
    struct Run;

    void run(std::int64_t requestId, const Request& request);
    void showList(const Run& run);
    void searchNotes(const Run& run);
    void deliver(const Run& run, const SearchResults& results, bool isFinal) const;
    std::shared_ptr<const NotesInOrder> notes(const SearchSettings& settings, base::Day today);

    const Tools _tools;
    base::Day _searchStart;
    base::Day _searchEnd;
    // Who holds the gate.
    SearchableNotes _notes;
    Narrowing _narrowing;
    base::Gate semaphore;  ///< the last member: its end waits for the work in hand
};

}  // namespace tessaly::search
