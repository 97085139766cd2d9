// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/executor.h"
#include "base/note_type.h"
#include "base/sort_type.h"
#include "grammar/date_string_helper.h"
#include "grammar/line_scanner.h"
#include "search/local_days.h"
#include "search/note_order.h"
#include "search/searched_note.h"
#include "search/task_places.h"
#include "store/cached_notes.h"
#include "store/sorted_snapshot.h"

namespace tessaly::search {

/// A note of the cache, made ready for searches. It keeps the cache's note alive.
struct SearchableNote {
    std::shared_ptr<const store::GeneralNote> general;  ///< one of the two
    std::shared_ptr<const store::CalendarNote> calendar;
    // A search asks each note for its text; these spare it the way through the cache's note.
    std::string_view text;      ///< of the cache's note, as is the next
    std::string_view filename;  ///< relative to its kind's folder
    std::string foldedCopy;     ///< of the text; empty where that needs no folding
    std::vector<TaskPlace> tasks;
    std::string title;
    std::string foldedTitle;
    std::string_view foldedFolder;
    std::shared_ptr<const std::string> folder;  ///< holds `foldedFolder`; many notes have the same
    std::optional<base::Day> day;               ///< of a calendar note
    base::Day changedDay{};
    base::Instant modified{};
    base::Instant created{};
    base::SortType sortBy = base::SortType::modified;  ///< by which it stands among others

    /// The folded text, or the text itself.
    std::string_view comparedText() const {
        return foldedCopy.empty() ? text : std::string_view(foldedCopy);
    }
    SearchedNote view() const;
    NoteSortKey sortKey() const { return {foldedTitle, modified, created}; }
};

/// Where a note stands among all: by its sort key; of equal ones, general notes by file name, then
/// calendar notes by day.
struct NotePlace {
    base::SortType sortBy;
    NoteSortKey key;
    std::optional<base::Day> day;
    std::string_view filename;
};
bool operator<(const NotePlace& a, const NotePlace& b);

struct ByPlace {
    using Key = NotePlace;
    static Key keyOf(const SearchableNote& note) {
        return {note.sortBy, note.sortKey(), note.day, note.filename};
    }
};

/// All notes that have a file, in the order of `sortBy`. Nobody changes it.
using NotesInOrder = store::SortedSnapshot<SearchableNote, ByPlace>;

/// What notes look like to a search, beside their text.
struct NoteLooks {
    base::SortType sortBy = base::SortType::modified;
    base::Day today{};  ///< days are named relative to it
    grammar::MarkerSettings markers;
};

/// Keeps the cache's notes ready for searches. Only what has changed since the last time is made
/// anew, and what that costs does not depend on how many notes there are; texts are not copied, but
/// for those that folding changes. Not for two threads at once; what it returns is for any.
class SearchableNotes {
public:
    /// All outlive it.
    SearchableNotes(base::Executor& executor, const grammar::DateStringHelper& names,
                    LocalTimeOf localTimeOf);

    /// The notes of two snapshots of the cache; the very same as the last time when no note is
    /// another. With many that are new, all threads work.
    std::shared_ptr<const NotesInOrder> of(
        std::shared_ptr<const store::GeneralNotes> generalNotes,
        std::shared_ptr<const store::CalendarNotes> calendarNotes, const NoteLooks& looks);

private:
    class Maker;

    /// One of the two is there.
    struct Source {
        std::shared_ptr<const store::GeneralNote> general;
        std::shared_ptr<const store::CalendarNote> calendar;
    };
    struct Differences {
        std::vector<Source> gone;
        std::vector<Source> come;
    };
    Differences differences(const store::GeneralNotes& generalNotes,
                            const store::CalendarNotes& calendarNotes, base::Day today) const;
    void forgetAll();
    void sortAnew(base::SortType sortBy);
    void replace(const Differences& found, const NoteLooks& before, const NoteLooks& now);

    base::Executor& _executor;
    const grammar::DateStringHelper& _names;
    const LocalTimeOf _localTimeOf;

    // As of the last time.
    std::shared_ptr<const store::GeneralNotes> _generalNotes;
    std::shared_ptr<const store::CalendarNotes> _calendarNotes;
    NoteLooks _looks;
    std::shared_ptr<const NotesInOrder> _notes;
};

}  // namespace tessaly::search
