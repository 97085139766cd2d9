// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <functional>

#include "app/commands.h"
#include "desktop/task_row_delegate.h"
#include "desktop/task_rows.h"

class QMenu;

namespace tessaly::desktop {

/// Whether a click on the task's box opens it again.
bool isDoneWith(const TaskRow& row);
/// Adds what can be done with a row: its commands, or what a click on a heading does. None:
/// nothing.
void fillTaskRowMenu(QMenu& menu, const TaskRow& row,
                     const std::function<void(app::CommandId)>& perform,
                     const std::function<void()>& activate);
/// What a click on a part of a task's row does, and its key. Empty: the part does nothing.
QString taskRowToolTip(const TaskRow& row, TaskRowPart part);

}  // namespace tessaly::desktop
