// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "base/day.h"
#include "base/enum_names.h"
#include "base/text_range.h"

namespace tessaly::grammar {

/// The kind of one line. The raw values are the words that filters and saved searches use.
enum class TodoType { scheduled, open, cancelled, done, quote, title, empty, list, text, tag };

/// The state of a task's box. `canceled` here and `cancelled` in `TodoType` are both meant so.
enum class TodoState { done, canceled, scheduled, open };

/// Which bare markers, without a box, make a line an open task.
struct MarkerSettings {
    bool isAsteriskTodo = true;
    bool isDashTodo = false;
    bool isNumbersTodo = false;
};

/// Whether a line of this kind is a task, in whatever state.
constexpr bool isTask(TodoType type) {
    return type <= TodoType::done;
}

/// One line of a note, read. Ranges are UTF-16 units of the note's text.
struct Todo {
    /// Characters of `content` shown in lists before three dots cut it; `content` itself is whole.
    static constexpr int defaultContentLength = 200;

    TodoType type = TodoType::empty;
    /// The text behind marker and box, behind a heading's or quote's opener, else the whole line; a
    /// carriage return at the line's end is never part of it.
    std::string content;
    /// The day the line belongs to: its first schedule tag, else its completion tag with the time
    /// there, else the note's day. Midnight when `hasTime` is false.
    std::optional<base::LocalTime> date;
    std::string title;           ///< of the note
    base::TextRange titleRange;  ///< of that title in the note
    bool isRecurring = false;    ///< the line carries @repeat(…)
    /// When to remind: the schedule tag's day with a time "HH:mm" at the start of `content`.
    std::optional<base::LocalTime> alarm;
    bool hasTime = false;       ///< `date` has a time of day
    base::TextRange textRange;  ///< the whole line, without its "\n", with a "\r" before it
    std::size_t lineIndex = 0;  ///< from 0
    std::size_t indents = 0;    ///< leading tab characters
    /// `lineIndex` of the nearest earlier line, not empty, with fewer indents.
    std::optional<std::size_t> indentParentIndex;
    std::size_t headingLevel = 0;  ///< number of "#" of a title line, else 0
    bool isFirstLine = false;
    std::string filename;  ///< of the note, relative to the data folder
    std::string base;      ///< the unaltered line, as `textRange` spans it
    int maxContentLength = defaultContentLength;
};

}  // namespace tessaly::grammar

namespace tessaly::base {

template <>
struct EnumNames<grammar::TodoType> {
    using T = grammar::TodoType;
    static constexpr std::array<EnumName<T>, 10> rows{{{T::scheduled, "scheduled"},
                                                       {T::open, "open"},
                                                       {T::cancelled, "cancelled"},
                                                       {T::done, "done"},
                                                       {T::quote, "quote"},
                                                       {T::title, "title"},
                                                       {T::empty, "empty"},
                                                       {T::list, "list"},
                                                       {T::text, "text"},
                                                       {T::tag, "tag"}}};
};

template <>
struct EnumNames<grammar::TodoState> {
    using T = grammar::TodoState;
    static constexpr std::array<EnumName<T>, 4> rows{{{T::done, "done"},
                                                      {T::canceled, "canceled"},
                                                      {T::scheduled, "scheduled"},
                                                      {T::open, "open"}}};
};

}  // namespace tessaly::base
