// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <optional>

#include "app/commands.h"
#include "app/task_changes.h"

namespace tessaly::desktop {

// What commands mean in lists of tasks, and their keys there.

std::optional<app::TaskStep> taskStepOf(app::CommandId command);
/// By how many days a command moves a task.
std::optional<int> taskMoveOf(app::CommandId command);
/// The command on tasks that a letter stands for.
std::optional<app::CommandId> taskCommandOfTyped(const QString& typed);
/// A command's text (%1) and its letter (%2), or another key.
QString withListKey(app::CommandId id, const char* format, const QString& other = {});

}  // namespace tessaly::desktop
