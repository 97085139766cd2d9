// SPDX-License-Identifier: MIT
#include "desktop/menus.h"

#include <QMenu>

#include "desktop/command_actions.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

QMenu* makeMainMenu(const CommandActions& actions, QWidget* parent) {
    using enum app::CommandGroup;
    auto* menu = new QMenu(parent);
    menu->setAccessibleName(trText("Main menu"));
    for (const app::CommandGroup group : {go, note, task, edit, format, view}) {
        actions.fillMenu(menu->addMenu(trText(app::groupText(group))), group);
    }
    menu->addSeparator();
    actions.fillMenu(menu, program);
    return menu;
}

}  // namespace tessaly::desktop
