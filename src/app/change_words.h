// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/task_gestures.h"
#include "base/day.h"
#include "base/failure.h"
#include "grammar/date_string_helper.h"
#include "grammar/todo.h"
#include "tasks/operation.h"
#include "tasks/operation_runner.h"
#include "tasks/task_outcome.h"

namespace tessaly::app {

/// What the words depend on.
struct ChangeWords {
    const grammar::DateStringHelper& dates;
    grammar::MarkerSettings markers;
    base::Day today{};
};

/// What became of the tasks that a gesture was for, in a sentence or two.
GestureNotice noticeOf(const base::Result<tasks::TaskOutcome>& outcome, const ChangeWords& words);

/// That an operation was taken back, as far as it could be.
GestureNotice noticeOf(const tasks::Operation& operation, const tasks::Undone& undone);

/// That nothing was changed, and why.
GestureNotice failureNotice(std::string why);

}  // namespace tessaly::app
