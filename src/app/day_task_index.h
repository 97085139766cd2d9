// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "grammar/line_scanner.h"
#include "grammar/todo.h"
#include "store/day_task_lines.h"
#include "store/day_tasks.h"

namespace tessaly::app {

/// The tasks of all notes by the day that they are planned for, kept from one look to the next: a
/// note that changes costs what it holds and what its days hold, and a look at a day what that day
/// holds. Answers as `store::DayTasks` does that has all the notes. One thread at a time.
class DayTaskIndex {
public:
    explicit DayTaskIndex(const grammar::MarkerSettings& markers) : _markers(markers) {}

    const grammar::MarkerSettings& markers() const { return _markers; }

    /// Takes a note in, in the place of what it held before; empty: it has gone.
    void put(base::NoteType type, std::string_view filename, std::string_view text);

    /// What tells of this day as if all notes were in it: its own notes' tasks, and those that are
    /// scheduled to it.
    store::DayTasks ofDay(base::Day day) const;

    /// The open tasks planned for a day before `today`, and records of the first `most`.
    store::OverdueTasks overdue(base::Day today, std::size_t most);

private:
    using NoteKey = std::pair<base::NoteType, std::string>;
    using Days = std::map<std::chrono::sys_days, std::string>;  ///< the records of one note
    struct OfDay {
        /// Of the day's own notes all tasks, of others those that are scheduled to it.
        std::map<NoteKey, std::string> records;
        /// How many of them are overdue once the day is over; nothing: not counted yet.
        std::optional<std::size_t> overdue;
    };

    Days recordsOf(const store::DayTaskLines& lines) const;
    void set(std::chrono::sys_days day, const NoteKey& note, std::string record);
    void remove(std::chrono::sys_days day, const NoteKey& note);

    grammar::MarkerSettings _markers;
    std::map<std::chrono::sys_days, OfDay> _days;
    std::map<NoteKey, std::vector<std::chrono::sys_days>> _notes;  ///< in which days they are
    grammar::NoteScanner _scanner;
    store::DayTaskLines _found;  ///< of the note that is taken in
};

}  // namespace tessaly::app
