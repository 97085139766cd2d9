// SPDX-License-Identifier: MIT
#include "app/task_gestures.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "app/change_words.h"
#include "app/undo_changes.h"
#include "base/localisation.h"
#include "base/serial_queue.h"

namespace tessaly::app {
namespace {

using base::tr;
using tasks::TaskOperations;
using tasks::TaskOutcome;
using tasks::TaskReference;

/// Whether a copy in another day's note went with a scheduling.
bool tookCopyAway(const tasks::Operation& operation, const tasks::Undone& undone) {
    const auto removes = [](const tasks::LineEdit& edit) {
        return edit.kind == tasks::LineEdit::Kind::remove;
    };
    return operation.cause == store::ChangeCause::scheduled &&
           std::any_of(undone.steps.begin(), undone.steps.end(), [&](const tasks::NoteStep& step) {
               return std::any_of(step.edits.begin(), step.edits.end(), removes);
           });
}

}  // namespace

/// Shared with the jobs, which hold it until they end.
struct TaskGestures::State {
    explicit State(Services& all)
        : services(all),
          queue(std::string(bundleIdentifier) + ".TaskGestures", all.ports().executor) {
        // What other threads ask for must be there before.
        all.dateStrings();
        all.globals();
        all.dataStore();
        all.noteCache();
    }

    template <class Make>
    static void carryOut(const std::shared_ptr<State>& state, Make make, Told told) {
        state->queue.async([state, make = std::move(make), told = std::move(told)] {
            const GestureNotice notice = make(*state);
            for (const tasks::NoteName& note : notice.notes) {
                state->services.noteCache().reread(note.type, note.filename);
            }
            state->services.ports().mainQueue.post([state, notice, told] {
                if (state->isAlive && told) {
                    told(notice);
                }
            });
        });
    }

    template <class Step>
    GestureNotice operate(const Step& step) {
        const auto journal = services.operationJournal();
        tasks::OperationRunner runner = services.operationRunner(*journal);
        TaskOperations operations{{services.ports().files, services.ports().clock, runner},
                                  services.dataStore().root(),
                                  services.rewriteSettings()};
        return noticeOf(step(operations), words());
    }

    /// Nothing: the newest one.
    GestureNotice undo(std::optional<std::uint64_t> wanted) {
        const auto journal = services.operationJournal();
        const auto operations = journal->operations(1);
        if (!operations) {
            return failureNotice(operations.failure().description);
        }
        if (operations->empty()) {
            return failureNotice(tr("There is nothing to undo"));
        }
        const tasks::Operation& newest = operations->front();
        if (wanted && newest.number != *wanted) {
            return failureNotice(newest.number > *wanted
                                     ? tr("Not undone: something else was changed since")
                                     : tr("That has been undone already"));
        }
        const auto undone = services.operationRunner(*journal).undo(newest);
        return undone ? toldOf(newest, *undone) : failureNotice(undone.failure().description);
    }

    GestureNotice toldOf(const tasks::Operation& operation, const tasks::Undone& undone) {
        GestureNotice notice = noticeOf(operation, undone);
        if (tookCopyAway(operation, undone) && services.globals().isFirstTimeUndoScheduling()) {
            notice.text +=
                ". " +
                tr("Undoing a scheduling also removes the task's copy in the other day's note.");
            // Should it not be stored, the user reads it another time.
            (void)services.globals().set("isFirstTimeUndoScheduling", "off");
        }
        return notice;
    }

    ChangeWords words() {
        return {services.dateStrings(), services.markerSettings(), services.today()};
    }

    Services& services;
    bool isAlive = true;  ///< main thread
    base::SerialQueue queue;
};

TaskGestures::TaskGestures(Services& services) : _state(std::make_shared<State>(services)) {}

TaskGestures::~TaskGestures() {
    _state->isAlive = false;
    _state->queue.sync([] {});
}

void TaskGestures::change(TaskStep step, std::vector<TaskReference> tasks, Told told) {
    State::carryOut(
        _state,
        [step, tasks = std::move(tasks)](State& state) {
            return state.operate([&](TaskOperations& operations) {
                switch (step) {
                    case TaskStep::complete: return operations.complete(tasks);
                    case TaskStep::cancel: return operations.cancel(tasks);
                    case TaskStep::reopen: break;
                }
                return operations.reopen(tasks);
            });
        },
        std::move(told));
}

void TaskGestures::schedule(std::vector<TaskReference> tasks, base::Day day, Told told) {
    schedule({{day, std::move(tasks)}}, std::move(told));
}

void TaskGestures::schedule(std::vector<TaskOperations::DayOfTasks> days, Told told) {
    State::carryOut(
        _state,
        [days = std::move(days)](State& state) {
            return state.operate(
                [&](TaskOperations& operations) { return operations.schedule(days); });
        },
        std::move(told));
}

void TaskGestures::archive(const tasks::NoteName& note, Told told) {
    State::carryOut(
        _state,
        [note](State& state) {
            return state.operate([&](TaskOperations& operations) {
                return operations.archive({&note, 1});
            });
        },
        std::move(told));
}

void TaskGestures::undo(std::uint64_t operation, Told told) {
    State::carryOut(
        _state, [operation](State& state) { return state.undo(operation); }, std::move(told));
}

void TaskGestures::undoLast(Told told) {
    State::carryOut(
        _state, [](State& state) { return state.undo(std::nullopt); }, std::move(told));
}

}  // namespace tessaly::app
