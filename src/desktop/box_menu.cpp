// SPDX-License-Identifier: MIT
#include "desktop/box_menu.h"

#include <QAction>
#include <QMenu>
#include <initializer_list>

#include "app/commands.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;
using grammar::TodoType;

void addCommands(QMenu& menu, const QWidget& window, std::initializer_list<CommandId> commands) {
    for (const CommandId command : commands) {
        const QString name = QString::fromLatin1(app::commandRow(command).name);
        if (auto* action = window.findChild<QAction*>(name)) {
            menu.addAction(action);
        }
    }
}

}  // namespace

void fillBoxMenu(QMenu& menu, const QWidget& window, TodoType state) {
    if (state != TodoType::done) {
        addCommands(menu, window, {CommandId::completeTask});
    }
    if (state != TodoType::cancelled) {
        addCommands(menu, window, {CommandId::cancelTask});
    }
    if (state != TodoType::open) {
        addCommands(menu, window, {CommandId::reopenTask});
    }
    menu.addSeparator();
    addCommands(menu, window,
                {CommandId::scheduleTask, CommandId::scheduleToday, CommandId::taskLater,
                 CommandId::taskWeekLater});
    menu.addSeparator();
    addCommands(menu, window,
                {CommandId::markMoveUp, CommandId::markMoveDown, CommandId::foldLine});
}

}  // namespace tessaly::desktop
