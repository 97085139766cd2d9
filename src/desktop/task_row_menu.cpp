// SPDX-License-Identifier: MIT
#include "desktop/task_row_menu.h"

#include <QKeySequence>
#include <QMenu>

#include "desktop/qt_text.h"
#include "desktop/task_list_commands.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;
using Kind = TaskRow::Kind;

}  // namespace

bool isDoneWith(const TaskRow& row) {
    return row.state == grammar::TodoType::done || row.state == grammar::TodoType::cancelled;
}

void fillTaskRowMenu(QMenu& menu, const TaskRow& row, const std::function<void(CommandId)>& perform,
                     const std::function<void()>& activate) {
    if (row.kind == Kind::day || row.kind == Kind::overdue) {
        menu.addAction(row.kind == Kind::day ? trText("Open Note of the Day")
                       : row.isFolded        ? trText("Show Overdue Tasks")
                                             : trText("Hide Overdue Tasks"),
                       &menu, activate);
        return;
    }
    if (row.kind != Kind::task) {
        return;
    }
    const auto add = [&](CommandId id) {
        menu.addAction(withListKey(id, "%1\t%2"), &menu, [perform, id] { perform(id); });
    };
    for (const CommandId id : {isDoneWith(row) ? CommandId::reopenTask : CommandId::completeTask,
                               CommandId::cancelTask}) {
        add(id);
    }
    menu.addSeparator();
    for (const CommandId id : {CommandId::scheduleTask, CommandId::scheduleToday,
                               CommandId::taskLater, CommandId::taskWeekLater}) {
        add(id);
    }
    menu.addSeparator();
    add(CommandId::jumpToSource);
}

QString taskRowToolTip(const TaskRow& row, TaskRowPart part) {
    const char* const format = "%1 (%2)";
    switch (part) {
        case TaskRowPart::box:
            return withListKey(isDoneWith(row) ? CommandId::reopenTask : CommandId::completeTask,
                               format);
        case TaskRowPart::schedule: return withListKey(CommandId::scheduleTask, format);
        case TaskRowPart::jump:
            return withListKey(CommandId::jumpToSource, format,
                               QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText));
        default: return {};
    }
}

}  // namespace tessaly::desktop
