// SPDX-License-Identifier: MIT
#include "tasks/task_operations.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "base/localisation.h"
#include "grammar/line_scanner.h"
#include "store/conflict_copies.h"
#include "tasks/archive_plan.h"
#include "tasks/planned_changes.h"
#include "tasks/refusals.h"
#include "tasks/repeat_plan.h"
#include "tasks/schedule_plan.h"

namespace tessaly::tasks {
namespace {

using base::Failure;
using base::N_;
using base::tr;
using grammar::TodoType;
using Named = PlannedChanges::Named;
using Outcome = base::Result<TaskOutcome>;
using What = TaskChange::What;

TodoType typeOf(const std::string& line, const grammar::MarkerSettings& markers) {
    return grammar::classifyLine(line, markers).type;
}

/// The lines that a state action can change; the others are refused.
std::vector<Named> actionable(PlannedChanges& plan, std::span<const TaskReference> tasks) {
    std::vector<Named> lines = plan.find(tasks);
    std::erase_if(lines, [&](const Named& named) {
        const bool isRefused = !isActionable(named.line.text);
        if (isRefused) {
            plan.refuse(named, N_("{0}: this is neither a task nor a list item"));
        }
        return isRefused;
    });
    return lines;
}

std::vector<std::string> changedNotes(const Operation& operation) {
    std::set<std::string> notes;
    for (const NoteStep& step : operation.steps) {
        notes.insert(pathOf({step.type, step.filename}));
    }
    return {notes.begin(), notes.end()};
}

bool hasNote(base::Day day) {
    return day.ok() && day.year() >= std::chrono::year{0} && day.year() <= std::chrono::year{9999};
}

Failure noSuchDay() {
    return {Failure::Kind::malformed, tr("there are no notes for this day")};
}

}  // namespace

Outcome TaskOperations::run(store::ChangeCause cause, const Planning& planning,
                            std::optional<base::Day> day) {
    for (bool isSecond = false;; isSecond = true) {
        PlannedChanges plan(_tools.files, _root, _settings.markers);
        planning(plan);
        if (plan.isEmpty()) {
            plan.notes().logTroubles();
            return plan.outcome(nullptr);
        }
        const auto made = _tools.runner.make(plan.operation(_tools.clock.now(), cause, day));
        // A note that changed after it was read is read again, so that the line is told that it
        // is about.
        if (!made && made.failure().kind == Failure::Kind::changed && !isSecond) {
            continue;
        }
        plan.notes().logTroubles();
        if (!made) {
            return made.failure();
        }
        TaskOutcome outcome = plan.outcome(&*made);
        outcome.conflictCopies = store::conflictCopiesOf(_tools.files, _root, changedNotes(*made));
        return outcome;
    }
}

Outcome TaskOperations::complete(References tasks) {
    const base::LocalTime now = _tools.clock.local(_tools.clock.now());
    return run(store::ChangeCause::completed, [&](PlannedChanges& plan) {
        for (const Named& named : actionable(plan, tasks)) {
            const NoteLine& line = named.line;
            if (typeOf(line.text, _settings.markers) == TodoType::done) {
                plan.tell(line, What::alreadyDone);
                continue;
            }
            const std::string after = completed(line.text, now, _settings);
            plan.count(line);
            plan.replace(line, withFinalRepeat(after, _settings.markers).value_or(after),
                         What::completed);
        }
    });
}

Outcome TaskOperations::cancel(References tasks) {
    return run(store::ChangeCause::cancelled, [&](PlannedChanges& plan) {
        for (const Named& named : actionable(plan, tasks)) {
            const NoteLine& line = named.line;
            if (typeOf(line.text, _settings.markers) == TodoType::cancelled) {
                plan.tell(line, What::alreadyCancelled);
            } else {
                plan.count(line);
                plan.replace(line, cancelled(line.text), What::cancelled);
            }
        }
    });
}

Outcome TaskOperations::reopen(References tasks) {
    return run(store::ChangeCause::reopened, [&](PlannedChanges& plan) {
        SchedulePlan schedule(plan, _settings);
        for (const Named& named : actionable(plan, tasks)) {
            schedule.reopen(named);
        }
    });
}

Outcome TaskOperations::schedule(References tasks, base::Day day) {
    const DayOfTasks only{day, {tasks.begin(), tasks.end()}};
    return schedule({&only, 1});
}

Outcome TaskOperations::schedule(std::span<const DayOfTasks> days) {
    if (!std::all_of(days.begin(), days.end(), [](const auto& one) { return hasNote(one.day); })) {
        return noSuchDay();
    }
    return run(
        store::ChangeCause::scheduled,
        [&](PlannedChanges& plan) {
            if (!_settings.isAppendScheduleLinks) {
                plan.letCopiesStay();
            }
            SchedulePlan schedule(plan, _settings);
            for (const auto& [day, tasks] : days) {
                for (const Named& named : actionable(plan, tasks)) {
                    schedule.schedule(named, day);
                }
            }
        },
        days.size() == 1 ? std::optional(days.front().day) : std::nullopt);
}

Outcome TaskOperations::scheduleAllOpen(base::Day source, base::Day day) {
    if (!hasNote(source)) {
        return noSuchDay();
    }
    const NoteName note = calendarNote(source);
    NoteTexts notes(_tools.files, _root);
    const auto& lines = notes.lines(note);
    if (!lines) {
        notes.logTroubles();
        return lines.failure();
    }
    std::vector<TaskReference> tasks;
    for (std::size_t index = 0; index < lines->size(); ++index) {
        if (typeOf((*lines)[index], _settings.markers) == TodoType::open) {
            tasks.push_back({note, index, (*lines)[index]});
        }
    }
    return schedule(tasks, day);
}

Outcome TaskOperations::repeat(References tasks, RepeatInterval interval, int count) {
    if (count < 0 || count > maxRepeats) {
        return Failure{Failure::Kind::malformed,
                       fmt::format(fmt::runtime(tr("the number of repeats must be from 0 to {0}")),
                                   maxRepeats)};
    }
    if (count == 0) {
        return TaskOutcome{};
    }
    return run(store::ChangeCause::repeated, [&](PlannedChanges& plan) {
        for (const Named& named : plan.find(tasks)) {
            planRepeat(plan, named, interval, count);
        }
    });
}

Outcome TaskOperations::remove(References tasks, LaterRepeats later) {
    return run(store::ChangeCause::deleted, [&](PlannedChanges& plan) {
        for (const Named& named : plan.find(tasks)) {
            plan.count(named.line);
            plan.remove(Phase::sources, named.line, What::deleted);
            if (later == LaterRepeats::go) {
                for (const NoteLine& line : laterRepeats(plan.notes(), named.line)) {
                    plan.remove(Phase::sources, line, What::deleted);
                }
            }
        }
    });
}

base::Result<std::size_t> TaskOperations::countLaterRepeats(References tasks) {
    PlannedChanges plan(_tools.files, _root, _settings.markers);
    std::set<std::pair<NoteName, std::size_t>> lines;
    for (const Named& named : plan.find(tasks)) {
        for (const NoteLine& line : laterRepeats(plan.notes(), named.line)) {
            if (!plan.isNamed(line.note, line.index)) {
                lines.emplace(line.note, line.index);
            }
        }
    }
    return lines.size();
}

Outcome TaskOperations::finishRepeat(const TaskReference& task) {
    return run(store::ChangeCause::repeated, [&](PlannedChanges& plan) {
        for (const Named& named : plan.find({&task, 1})) {
            if (const auto after = withFinalRepeat(named.line.text, _settings.markers)) {
                plan.count(named.line);
                plan.replace(named.line, *after, What::completed);
            }
        }
    });
}

Outcome TaskOperations::archive(std::span<const NoteName> notes) {
    return run(store::ChangeCause::archived, [&](PlannedChanges& plan) {
        std::set<NoteName> seen;
        for (const NoteName& note : notes) {
            const auto& lines = plan.notes().lines(note);
            if (!lines) {
                plan.refuse(TaskReference{note, 0, {}}, lines.failure());
            } else if (seen.insert(note).second) {
                planArchive(plan, note, *lines);
            }
        }
    });
}

}  // namespace tessaly::tasks
