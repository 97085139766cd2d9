// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/executor.h"
#include "base/note_type.h"
#include "grammar/line_scanner.h"
#include "grammar/todo.h"
#include "store/day_task_lines.h"

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
/// counts, also when the original has been opened again; where a general note's line has no copy
/// (copying is a setting), the line itself is an open task of the day it names, and so is a line
/// that is scheduled to the day of its own note.
class DayTasks {
public:
    /// Adds the tasks of one note; `scanner` is the calling thread's. `bytes` are the file's: a
    /// note that is not UTF-8 has none.
    void add(base::NoteType type, std::string_view filename, std::string_view bytes,
             const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner);
    void join(DayTasks&& other);

    /// What `add` would take of a note, to be kept and taken later: the same settings of markers
    /// must then hold. Empty: nothing.
    static std::string record(base::NoteType type, std::string_view filename,
                              std::string_view bytes, const grammar::MarkerSettings& settings,
                              grammar::NoteScanner& scanner);
    /// Adds the tasks of one note by its record. False: that is none, and nothing was added.
    bool addRecord(base::NoteType type, std::string_view filename, std::string_view record);

    /// The tasks of that day's own note, in line order, of every state.
    std::vector<NoteTask> ofNote(base::Day day) const;

    /// The tasks of other notes that are planned for that day, open or closed, by file and line;
    /// an original whose copy stands in the day's note is left out.
    std::vector<NoteTask> scheduledTo(base::Day day) const;

    /// How many of `scheduledTo` are of general notes, and open (a scheduled line that stands for
    /// itself is) or done. No records are made.
    struct Counts {
        std::size_t open = 0;
        std::size_t done = 0;
    };
    Counts countGeneral(base::Day day) const;

    /// The open tasks planned for a day before `today`, the oldest first, none twice: a task that
    /// a schedule tag plans for later is not overdue, whatever its note's day.
    /// Records are made for the first `most` alone: there may be thousands that nobody looks at.
    /// The executor's threads help to look for copies.
    OverdueTasks overdue(base::Day today, base::Executor& executor,
                         std::size_t most = everyTask) const;

private:
    // Tasks are kept as found, a note's together, and made into records when asked for: most are
    // never shown.
    struct Note {
        base::NoteType type = base::NoteType::none;
        std::string_view filename;
        std::string_view title;
        std::optional<base::Day> day;
        std::span<const DayTaskLine> lines;
    };
    struct Found {
        const Note* note;
        const DayTaskLine* line;
    };
    class Copies;

    void keep(base::NoteType type, std::string_view filename, const DayTaskLines& found);
    std::string_view kept(std::string_view text);

    template <class Visit>
    void eachTask(Visit visit) const;
    std::vector<Found> foundFor(base::Day day) const;
    static std::optional<base::Day> plannedDay(const Found& task);
    static bool mayBeOverdue(const Found& task, base::Day today);
    static NoteTask recordOf(const Found& found);
    static std::vector<NoteTask> inOrder(std::vector<Found> tasks, std::size_t most);

    using Memory = std::pmr::monotonic_buffer_resource;
    std::vector<std::unique_ptr<Memory>> _memory;  // that the notes lie in; new ones in the first
    std::vector<Note> _notes;                      // those that hold such tasks, in no order
    DayTaskLines _found;                           // of the note that is being added
};

}  // namespace tessaly::store
