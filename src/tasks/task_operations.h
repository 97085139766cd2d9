// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/failure.h"
#include "ports/clock.h"
#include "ports/file_system.h"
#include "store/change_cause.h"
#include "tasks/operation_runner.h"
#include "tasks/repeats.h"
#include "tasks/task_outcome.h"
#include "tasks/task_rewrites.h"

namespace tessaly::tasks {

class PlannedChanges;

/// The life of a task in note files. Each call is one operation, made as a whole by the runner and
/// undone as a whole; the lines that it is not refused for are changed even when others are.
/// Failure: nothing was changed; in words for the user, and logged as the runner tells. Any thread.
class TaskOperations {
public:
    struct Tools {
        ports::FileSystem& files;
        ports::Clock& clock;
        OperationRunner& runner;
    };

    /// `root` is the data folder.
    TaskOperations(Tools tools, std::string root, const RewriteSettings& settings)
        : _tools(tools), _root(std::move(root)), _settings(settings) {}

    using References = std::span<const TaskReference>;

    /// Completes tasks; of a repeat, the last one is marked so. A done one is `alreadyDone`.
    base::Result<TaskOutcome> complete(References tasks);
    base::Result<TaskOutcome> cancel(References tasks);
    /// Opens done, cancelled and scheduled tasks again. The copy of a scheduled one goes with it,
    /// as in `schedule`.
    base::Result<TaskOutcome> reopen(References tasks);

    /// Schedules tasks to a day: each is copied to the end of that day's note, which is made when
    /// it is not there, and marked. A copy of an earlier scheduling goes when exactly one line of
    /// that day is one and is still open. Done and cancelled tasks are refused. To the day of its
    /// own note a task is not copied; nor from a general note where a setting says so.
    base::Result<TaskOutcome> schedule(References tasks, base::Day day);
    /// The same for tasks that go to several days; a task counts for the first day it is given for.
    struct DayOfTasks {
        base::Day day{};
        std::vector<TaskReference> tasks;
    };
    base::Result<TaskOutcome> schedule(std::span<const DayOfTasks> days);
    /// The same for every open task of a day's note; refused when there is no such note.
    base::Result<TaskOutcome> scheduleAllOpen(base::Day source, base::Day day);

    /// Copies lines to the notes of `count` later days, counted from the day of their note. Refused
    /// in a general note; a count of 0 does nothing. At most `maxRepeats`.
    base::Result<TaskOutcome> repeat(References tasks, RepeatInterval interval, int count);
    static constexpr int maxRepeats = 1000;

    /// Whether the later repeats of a deleted line go, too.
    enum class LaterRepeats { stay, go };
    base::Result<TaskOutcome> remove(References tasks, LaterRepeats later);
    /// How many later repeats there are of these lines, in all.
    base::Result<std::size_t> countLaterRepeats(References tasks);

    /// For a completed line with a repeat tag, that arrived from elsewhere: marks it as the last
    /// one when it is. No change for others and for one that is marked already.
    base::Result<TaskOutcome> finishRepeat(const TaskReference& task);

    /// Moves done and cancelled tasks, with the lines indented under them, to the end of the
    /// section
    /// "## Archive", which is made at the note's end when there is none.
    base::Result<TaskOutcome> archive(std::span<const NoteName> notes);

private:
    using Planning = std::function<void(PlannedChanges& plan)>;
    base::Result<TaskOutcome> run(store::ChangeCause cause, const Planning& planning,
                                  std::optional<base::Day> day = std::nullopt);

    Tools _tools;
    const std::string _root;
    const RewriteSettings _settings;
};

}  // namespace tessaly::tasks
