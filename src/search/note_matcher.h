// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "grammar/line_scanner.h"
#include "grammar/todo.h"
#include "search/filter_conditions.h"
#include "search/folded_text.h"
#include "search/needle.h"
#include "search/search_query.h"

namespace tessaly::search {

/// Where a task stands in a note's folded text.
struct TaskPlace {
    std::uint32_t start = 0;  ///< of its line, in bytes of the folded text
    std::uint32_t lineIndex : 28 = 0;
    std::uint32_t type : 4 = 0;  ///< `grammar::TodoType`; a task's
};

/// The tasks of a note in order; `text` is its content, `foldedText` its folded form or the same
/// bytes.
std::vector<TaskPlace> tasksOf(std::string_view text, std::string_view foldedText,
                               const grammar::MarkerSettings& markers,
                               grammar::NoteScanner& scanner);

/// A note as it is searched; all of it lives as long as the note.
struct SearchedNote {
    base::NoteType type = base::NoteType::none;
    std::string_view filename;  ///< relative to its kind's folder
    std::string_view title;     ///< as lists show it
    std::string_view foldedTitle;
    std::string_view foldedFolder;  ///< "Notes/work": as `isInFolder` takes it
    std::optional<base::Day> day;   ///< of a calendar note
    base::Day changedDay{};         ///< the local day of its last change
    std::string_view text;          ///< without a byte-order mark
    std::string_view foldedText;    ///< `folded(text)`, or `text` itself where it needs no folding
    std::span<const TaskPlace> tasks;
};

/// A line that matched.
struct LineMatch {
    std::size_t lineIndex = 0;  ///< from 0
    Stretch line;               ///< in the folded text, without "\n"
    Stretch match;              ///< in the folded text; empty at the line's start: all of it matches
    grammar::TodoType type = grammar::TodoType::text;  ///< of other than tasks not known: `text`
    /// 0: the whole text stands there (or the tag); 1: its words do, apart.
    std::uint8_t rank = 0;
};

/// The rows that a note gives.
struct NoteMatches {
    std::vector<LineMatch> lines;  ///< each a row; by rank, then by line
    /// The note has a row of its own, for its title or lines that are no rows themselves: the first
    /// of these, or, when only the title matched, nothing.
    bool hasNoteRow = false;
    std::optional<LineMatch> noteLine;
    std::size_t rows = 0;      ///< of all ranks; also when nothing is collected
    std::size_t taskRows = 0;  ///< of these, those that are tasks
    /// A tag search: rows of lines that hold the token as part of a longer word only. They count
    /// (and are kept, with rank 1) beside `rows`, for when no note at all has others.
    std::size_t textRows = 0;
    std::size_t textTaskRows = 0;
};

/// A query and a filter, ready to be asked of notes. A value that does not change; any thread.
class NoteMatcher {
public:
    /// All queries hold (the second is the filter's keyword); the first that has a text gives the
    /// highlight. Ranks come from it, too.
    NoteMatcher(std::vector<SearchQuery> queries, FilterConditions filter);

    /// Lines that carry a tag or mention (`token` with its sign, folded), one below it ("#a/b" for
    /// "#a") or it with an argument. Lines in which the token merely occurs are `textRows`.
    static NoteMatcher forTag(std::string token, FilterConditions filter);

    enum class Collect { rows, counts };
    /// With `counts`, `lines` and `noteLine` stay empty. `matches` is emptied first; giving the same
    /// again saves allocations.
    void match(const SearchedNote& note, Collect collect, NoteMatches& matches) const;

    /// Whether no line of the text can match, told by the text alone: for who must do much to make
    /// a `SearchedNote`. The title may match all the same.
    bool isTextHopeless(std::string_view foldedText) const;

    /// Whether the title of an event or reminder matches; days are not asked here. Where: in the
    /// folded title.
    std::optional<Stretch> matchTitle(std::string_view foldedTitle) const;

    const DayRange& days() const { return _days; }
    const FilterConditions& filter() const { return _filter; }

private:
    std::vector<SearchQuery> _queries;
    FilterConditions _filter;
    DayRange _days;  // of the queries and the filter
};

}  // namespace tessaly::search
