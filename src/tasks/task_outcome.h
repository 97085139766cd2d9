// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/day.h"
#include "base/failure.h"
#include "base/note_type.h"

namespace tessaly::tasks {

/// A note of the data folder.
struct NoteName {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to its kind's folder

    auto operator<=>(const NoteName&) const = default;
};

/// A line that is to be changed.
struct TaskReference {
    NoteName note;
    std::size_t lineIndex = 0;
    /// What the line, or its content as a list shows it, must read; a text that ends in three dots
    /// was cut for display, and tells the beginning alone. Nothing: whatever stands there.
    std::optional<std::string> text;
    /// Where the line may stand.
    enum class Where {
        there,     ///< at `lineIndex`
        anywhere,  ///< there, else where the note's only line with that text stands
    } where = Where::anywhere;
};

/// One line that was changed, or that is as it was wanted already.
struct TaskChange {
    enum class What {
        completed,
        cancelled,
        reopened,
        scheduled,    ///< to `day`
        copied,       ///< a scheduled task stands here now, too
        removedCopy,  ///< of an earlier scheduling
        leftCopy,     ///< of an earlier scheduling: it was changed, or there are several
        repeated,     ///< copied here as a later repeat
        deleted,
        archived,     ///< moved here, lines below it included
        alreadyDone,  ///< these five have changed nothing
        alreadyCancelled,
        alreadyOpen,
        alreadyScheduled,  ///< to `day`, where its copy stands
        nothingToArchive,
    } what = What::completed;
    NoteName note;
    std::size_t lineIndex = 0;  ///< where the line stands now; of one that is gone, stood
    std::string line;           ///< as it reads now; of one that is gone, read
    std::optional<base::Day> day;
};

/// A line that was not changed, and why, in words for the user that name note and line.
struct TaskRefusal {
    TaskReference task;
    base::Failure failure;
};

struct TaskOutcome {
    std::vector<TaskChange> changes;
    std::vector<TaskRefusal> refusals;
    /// Notes that were changed while other versions of them lie beside them, which stay as they
    /// are: paths of those, relative to the data folder.
    std::vector<std::string> conflictCopies;
    /// What `undo` takes back; nothing when nothing was changed.
    std::optional<std::uint64_t> operation;
};

}  // namespace tessaly::tasks
