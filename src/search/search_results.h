// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/day.h"
#include "base/enum_names.h"
#include "base/note_type.h"
#include "base/text_range.h"
#include "calendar/cached_calendar_item.h"
#include "grammar/todo.h"
#include "store/note_model.h"

namespace tessaly::search {

/// The kind of a row.
enum class SearchResultType { calendarTodo, noteTodo, event, reminder, note, section, loading };

/// The place of a row in its group, by which a list draws the frame around that: the section row is
/// `firstInGroup`, the last row `last`, also where it is the only one below its section.
enum class NotesViewItemPosition { firstInGroup, first, inBetween, last };

/// The thing behind a row.
using FoundObject = std::variant<grammar::Todo, calendar::CachedCalendarItem, store::NoteModel>;

/// One row of a list of results.
struct SearchResultItem {
    std::int64_t id = 0;  ///< unique within one list, from 1
    /// The task's text, the event's title, the note's title; a section's heading.
    std::string title;
    /// Up to 60 user-perceived characters of the line around the match, "…" where it was cut.
    std::string content;
    SearchResultType type = SearchResultType::note;
    std::string filename;       ///< relative to its kind's folder; empty for events and reminders
    std::string groupFilename;  ///< of the note that it is shown under; of an event that of its day
    /// What was found; null where it was not asked for, and for sections. Copies of a row share it.
    std::shared_ptr<const FoundObject> object;
    base::TextRange highlightRange;  ///< in `content`, UTF-16 units
    NotesViewItemPosition position = NotesViewItemPosition::inBetween;
    base::NoteType noteType = base::NoteType::none;  ///< of `filename`
    std::optional<std::size_t> lineIndex;            ///< of the line in its note, from 0
    /// A line's kind, of `calendarTodo` and `noteTodo` rows: a task's state, or `text` for a line
    /// without one.
    grammar::TodoType lineType = grammar::TodoType::text;
    std::optional<base::Day> day;  ///< of an event, a reminder or a calendar note

    friend bool operator==(const SearchResultItem& a, const SearchResultItem& b) {
        return a.id == b.id;
    }
};

/// What a list shows.
struct SearchResults {
    std::vector<SearchResultItem> items;  ///< in display order
    bool hasTodos = false;                ///< among all results, shown or not
    bool hasEvents = false;
    std::optional<base::Day> agendaDate;  ///< the list is an agenda of this one day
    std::size_t total = 0;  ///< rows in all, sections not counted; `items` may hold but the first
};

}  // namespace tessaly::search

template <>
struct std::hash<tessaly::search::SearchResultItem> {
    std::size_t operator()(const tessaly::search::SearchResultItem& item) const {
        return std::hash<std::int64_t>()(item.id);
    }
};

namespace tessaly::base {

template <>
struct EnumNames<search::SearchResultType> {
    using T = search::SearchResultType;
    static constexpr std::array<EnumName<T>, 7> rows{{{T::calendarTodo, "calendarTodo"},
                                                      {T::noteTodo, "noteTodo"},
                                                      {T::event, "event"},
                                                      {T::reminder, "reminder"},
                                                      {T::note, "note"},
                                                      {T::section, "section"},
                                                      {T::loading, "loading"}}};
};

}  // namespace tessaly::base
