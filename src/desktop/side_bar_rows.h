// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <string>

#include "app/list_feed.h"
#include "app/place.h"
#include "search/side_bar.h"

namespace tessaly::desktop {

// What the rows of the sidebar stand for. A row's key is that of `search::SideBar::keyOf`: its kind
// with a colon, and its name.

inline constexpr char folderKind[] = "folder:";
inline constexpr char noteKind[] = "note:";
inline constexpr char viewKind[] = "view:";

/// The list that a row shows; of a folder, its notes.
app::ListRequest listOfRow(const search::SideBarItem& item);
/// The key of the row that shows a list; the wording of its query counts. Empty: none does.
std::string keyOfList(const app::ListRequest& list);
std::string keyOfPlace(const app::Place& place, base::Day today);
/// The folder that a row is, or lies in; empty: the topmost.
std::string folderOfRow(const search::SideBarItem& item);
/// All folders of the tree, in its order.
QStringList foldersOf(const search::SideBar& sideBar);
/// A head without rows, and what the window has nothing for.
bool isWithoutUse(const search::SideBarItem& item);

}  // namespace tessaly::desktop
