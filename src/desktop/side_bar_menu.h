// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "search/side_bar_item.h"

class QMenu;

namespace tessaly::desktop {

/// What the menu of a row of the sidebar offers.
enum class SideBarAction {
    open,
    showList,  ///< of a folder: its notes in the list
    newNote,
    newFolder,
    rename,
    move,
    trash,
    copyLink,  ///< of a note
    copyTag,
    openFolder,  ///< in the file manager
};

/// Adds what can be done with a row of that type; `perform` is called for what the user chooses.
void fillSideBarMenu(QMenu& menu, search::SideBarItemType type,
                     const std::function<void(SideBarAction)>& perform);

}  // namespace tessaly::desktop
