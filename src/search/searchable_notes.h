// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/day.h"
#include "base/executor.h"
#include "base/sort_type.h"
#include "grammar/date_string_helper.h"
#include "search/note_matcher.h"
#include "search/note_order.h"
#include "store/cached_notes.h"

namespace tessaly::search {

/// A note of the cache, made ready for searches. It keeps the cache's note alive.
struct SearchableNote {
    std::shared_ptr<const store::GeneralNote> general;    ///< one of the two
    std::shared_ptr<const store::CalendarNote> calendar;
    std::string title;
    std::string foldedTitle;
    std::string foldedFolder;
    std::string foldedCopy;  ///< of the text; empty where that needs no folding
    std::vector<TaskPlace> tasks;
    base::Instant modified{};
    base::Instant created{};
    base::Day changedDay{};

    SearchedNote view() const;
    NoteSortKey sortKey() const { return {foldedTitle, modified, created}; }
};

/// What notes look like to a search, beside their text.
struct NoteLooks {
    base::SortType sortBy = base::SortType::modified;
    base::Day today{};  ///< days are named relative to it
    grammar::MarkerSettings markers;

    bool operator==(const NoteLooks&) const;
};

/// All notes that have a file, in the order of `sortBy`. Nobody changes it.
using NotesInOrder = std::vector<std::shared_ptr<const SearchableNote>>;

/// Keeps the cache's notes ready for searches. Only what has changed since the last time is made
/// anew; texts are not copied, but for those that folding changes. Not for two threads at once; what
/// it returns is for any.
class SearchableNotes {
public:
    /// All outlive it. `localDay` tells on which day of the user's zone an instant lies.
    SearchableNotes(base::Executor& executor, const grammar::DateStringHelper& names,
                    std::function<base::Day(base::Instant)> localDay);

    /// The notes of two snapshots of the cache. With many that are new, all threads work.
    std::shared_ptr<const NotesInOrder> of(
        std::shared_ptr<const store::GeneralNotes> generalNotes,
        std::shared_ptr<const store::CalendarNotes> calendarNotes, const NoteLooks& looks);

private:
    base::Executor& _executor;
    const grammar::DateStringHelper& _names;
    const std::function<base::Day(base::Instant)> _localDay;
};

}  // namespace tessaly::search
