// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "base/day.h"
#include "base/executor.h"
#include "grammar/todo.h"
#include "store/cached_notes.h"

namespace tessaly::store {

/// Notes whose tasks may be planned for other days than before, and days whose own notes have
/// changed.
struct ChangedTasks {
    struct Note {
        GeneralNotes::Pointer before;  ///< null: it has come
        GeneralNotes::Pointer after;   ///< null: it has gone
    };
    std::vector<Note> notes;  ///< in the order in which they changed
    std::vector<base::Day> days;

    bool empty() const { return notes.empty() && days.empty(); }
    void add(ChangedTasks&& more);
};

/// How many tasks of general notes are scheduled to each day, so that a change costs as much as the
/// changed note's tasks. Lines that were scheduled away are kept one by one: whether one counts is
/// for the day's own note to say. Not for two threads at once, but for `countsOf`.
class NoteTaskCounts {
public:
    struct Counts {
        std::uint8_t open = 0;  ///< at most 255, as is the next
        std::uint8_t done = 0;

        bool operator==(const Counts&) const = default;
    };

    /// Forgets what was held.
    void build(const GeneralNotes& notes, base::Executor& executor);

    /// Takes changes over. Returns the days that are to be counted anew, in order.
    std::vector<base::Day> replace(const ChangedTasks& changes);

    /// A note came (`before` is null), changed or went (`after` is null). Returns the days whose
    /// tasks are not the same any more.
    std::vector<base::Day> replace(const GeneralNotes::Pointer& before,
                                   const GeneralNotes::Pointer& after);

    /// The days to which tasks are scheduled, in order.
    std::vector<base::Day> days() const;
    bool hasTasks(base::Day day) const { return _days.contains(day); }

    /// Counts a day's tasks. An original whose copy stands in the day's own note does not count
    /// beside it. `note` is null for a day without one. Any thread, while nothing is replaced.
    Counts countsOf(base::Day day, const CalendarNote* note,
                    const grammar::MarkerSettings& settings) const;

private:
    struct ScheduledLine {
        base::Day day;
        std::uint32_t dated;  // the line's place in `datedLines`
    };
    struct Originals {
        GeneralNotes::Pointer note;
        std::vector<std::uint32_t> dated;
    };
    struct OfDay {
        std::size_t open = 0;
        std::size_t done = 0;
        std::map<const GeneralNote*, Originals> originals;

        bool empty() const { return open == 0 && done == 0 && originals.empty(); }
    };
    static std::vector<ScheduledLine> scheduledLines(const LoadedNote& note);
    void add(const GeneralNotes::Pointer& note, const std::vector<ScheduledLine>& lines);
    void remove(const GeneralNotes::Pointer& note, const std::vector<ScheduledLine>& lines);

    std::map<base::Day, OfDay> _days;  // none is empty
};

}  // namespace tessaly::store
