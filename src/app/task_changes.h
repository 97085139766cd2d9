// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/services.h"
#include "base/failure.h"
#include "store/note_cache.h"
#include "store/note_reader.h"
#include "tasks/task_operations.h"

namespace tessaly::app {

/// Lines that a user named, to be changed in one operation.
struct TaskRequest {
    std::vector<std::string>
        tasks;  ///< each as `TaskFinder` takes it; one that comes again counts once
    /// What the line must read, or its content, or what that begins with when it ends in "...";
    /// only where a single line is named.
    std::optional<std::string> expected;
};

/// What becomes of a task by itself.
enum class TaskStep { complete, cancel, reopen };

/// What they return is what `tasks::TaskOperations` tells, with a refusal for each name that was
/// not found; a failure, in words for the user, has changed nothing; `cancelled`, without words:
/// the look-up was. `options` are for the look-up of titles.

base::Result<tasks::TaskOutcome> changeTasks(Services& services, TaskStep step,
                                             const TaskRequest& request,
                                             const store::NoteReader::Options& options = {});

/// A single name that is a day's without a line stands for every open task of that day's note.
base::Result<tasks::TaskOutcome> scheduleTasks(Services& services, const TaskRequest& request,
                                               base::Day day,
                                               const store::NoteReader::Options& options = {});

base::Result<tasks::TaskOutcome> repeatTasks(Services& services, const TaskRequest& request,
                                             tasks::RepeatInterval interval, int count,
                                             const store::NoteReader::Options& options = {});

/// Deletes lines. Where a line repeats later and `later` does not tell, the user is asked whether
/// the later ones go, too. `unavailable`, without words: there was no answer.
base::Result<tasks::TaskOutcome> deleteTasks(
    Services& services, const TaskRequest& request,
    std::optional<tasks::TaskOperations::LaterRepeats> later,
    const store::NoteReader::Options& options = {});

/// Archives the processed tasks of notes, each as `findNote` takes it.
base::Result<tasks::TaskOutcome> archiveTasks(Services& services,
                                              const std::vector<std::string>& notes,
                                              const store::NoteReader::Options& options = {});

/// Looks after a completed repeat that another device has brought. True: its note was changed. Any
/// thread, once the instances that `services` hands out for it are made.
bool finishRepeat(Services& services, const store::FinishedRepeat& found);

}  // namespace tessaly::app
