// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/services.h"
#include "app/task_changes.h"
#include "tasks/task_operations.h"
#include "tasks/task_outcome.h"

namespace tessaly::app {

/// What a gesture came to, for the notice that the user sees.
struct GestureNotice {
    std::string text;  ///< "Completed \"Call Bob\"", "Scheduled 3 tasks to Fri, 8 Mar", "Undone: …"
    bool isFailure = false;                  ///< nothing was changed, and the text tells why
    std::optional<std::uint64_t> operation;  ///< what the notice's Undo takes back; nothing: none
    std::vector<tasks::NoteName> notes;      ///< that were changed
};

/// Carries out the gestures on task rows of lists: in the background, one after the other, each as
/// one operation of the journal. Whoever has one of the notes open saves it first. Main thread; so
/// are the answers, which are not given any more once this object has gone.
class TaskGestures {
public:
    using Told = std::function<void(const GestureNotice& notice)>;

    /// `services` outlives it.
    explicit TaskGestures(Services& services);
    /// Waits for the work in hand.
    ~TaskGestures();
    TaskGestures(const TaskGestures&) = delete;
    TaskGestures& operator=(const TaskGestures&) = delete;

    void change(TaskStep step, std::vector<tasks::TaskReference> tasks, Told told);
    void schedule(std::vector<tasks::TaskReference> tasks, base::Day day, Told told);
    void schedule(std::vector<tasks::TaskOperations::DayOfTasks> days, Told told);
    /// Moves what is done in a note to its archive.
    void archive(const tasks::NoteName& note, Told told);
    /// Takes back the operation of a notice, if it is still the newest one; else says so.
    void undo(std::uint64_t operation, Told told);
    /// Takes back the newest operation, whoever made it.
    void undoLast(Told told);

private:
    struct State;
    std::shared_ptr<State> _state;
};

}  // namespace tessaly::app
