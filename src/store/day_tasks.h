// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "grammar/line_scanner.h"
#include "grammar/todo.h"

namespace tessaly::store {

/// A task line and the note that holds it.
struct NoteTask {
    base::NoteType type = base::NoteType::none;
    std::string filename;              ///< relative to its kind's folder
    std::optional<base::Day> noteDay;  ///< of a calendar note
    grammar::Todo todo;
    /// The day the task is planned for: its schedule tag's, else its note's.
    std::optional<base::Day> day;
};

/// Stands for any number of tasks.
inline constexpr std::size_t everyTask = std::numeric_limits<std::size_t>::max();

/// Tasks that are overdue: the first of them, and how many there are in all.
struct OverdueTasks {
    std::vector<NoteTask> tasks;
    std::size_t total = 0;
};

/// The tasks that have to do with days: every task of a calendar note, and the tasks of general
/// notes that carry a schedule tag. Filled note by note in any order; sets of several threads are
/// joined. Asked when all is in.
///
/// A scheduled line is the original of a copy that stands in the day it names. The copy is what
/// counts; where a general note's line has no copy (copying is a setting), the line itself is an
/// open task of the day it names.
class DayTasks {
public:
    /// Adds the tasks of one note; `scanner` is the calling thread's.
    void add(base::NoteType type, std::string_view filename, std::string_view text,
             const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner);
    void join(DayTasks&& other);

    /// The tasks of that day's own note, in line order, of every state.
    std::vector<NoteTask> ofNote(base::Day day) const;

    /// The tasks of other notes that are planned for that day, open or closed, by file and line;
    /// an original whose copy stands in the day's note is left out.
    std::vector<NoteTask> scheduledTo(base::Day day) const;

    /// The open tasks planned for a day before `today`, the oldest first, none twice: a task that
    /// a schedule tag plans for later is not overdue, whatever its note's day.
    /// Records are made for the first `most` alone: there may be thousands that nobody looks at.
    OverdueTasks overdue(base::Day today, std::size_t most = everyTask) const;

private:
    struct Note {
        base::NoteType type = base::NoteType::none;
        std::string filename;
        std::string title;
        std::optional<base::Day> day;
    };
    // Kept as found, and made into records when asked for: most are never shown.
    struct Line {
        std::shared_ptr<const Note> note;
        std::string text;
        grammar::LineClass line;
        std::size_t index = 0;
        std::optional<base::Day> scheduledTo;
    };

    class Copies;

    static std::optional<base::Day> plannedDay(const Line& line);
    static NoteTask taskOf(const Line& line);
    static std::vector<NoteTask> inOrder(std::vector<const Line*> lines, std::size_t most);
    const std::vector<Line>& ofDay(base::Day day) const;

    std::map<base::Day, std::vector<Line>> _byNoteDay;  // tasks of calendar notes
    std::map<base::Day, std::vector<Line>> _scheduled;  // by the day of the schedule tag
};

}  // namespace tessaly::store
