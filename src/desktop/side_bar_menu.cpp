// SPDX-License-Identifier: MIT
#include "desktop/side_bar_menu.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <algorithm>
#include <vector>

#include "base/localisation.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {
namespace {

using base::N_;
using Type = search::SideBarItemType;
using Action = SideBarAction;

enum class Gap { none, before };

struct MenuRow {
    Action action;
    const char* text;  ///< English
    const char* keys;
    Gap gap;
    std::vector<Type> types;
};

const std::vector<MenuRow>& menuRows() {
    static const std::vector<MenuRow> rows{
        {Action::open,
         N_("Open"),
         "Return",
         Gap::none,
         {Type::note, Type::view, Type::hashtag, Type::attag, Type::today, Type::week, Type::inbox,
          Type::recent, Type::archive, Type::trash, Type::preferences, Type::help}},
        {Action::showList, N_("Show in List"), "", Gap::none, {Type::folder}},
        {Action::newNote,
         N_("New Note Here"),
         "",
         Gap::before,
         {Type::note, Type::folder, Type::notes, Type::archive}},
        {Action::newFolder, N_("New Folder…"), "", Gap::none, {Type::folder, Type::notes}},
        {Action::rename, N_("Rename"), "F2", Gap::before, {Type::note, Type::folder, Type::view}},
        {Action::move, N_("Move to Folder…"), "", Gap::none, {Type::note, Type::folder}},
        {Action::copyLink, N_("Copy Link"), "", Gap::before, {Type::note}},
        {Action::copyTag, N_("Copy"), "", Gap::before, {Type::hashtag, Type::attag}},
        {Action::openFolder,
         N_("Open in File Manager"),
         "",
         Gap::none,
         {Type::note, Type::folder, Type::notes, Type::archive}},
        {Action::trash,
         N_("Move to Trash"),
         "Del",
         Gap::before,
         {Type::note, Type::folder, Type::view}},
    };
    return rows;
}

}  // namespace

void fillSideBarMenu(QMenu& menu, Type type, const std::function<void(SideBarAction)>& perform) {
    for (const MenuRow& row : menuRows()) {
        if (std::find(row.types.begin(), row.types.end(), type) == row.types.end()) {
            continue;
        }
        if (row.gap == Gap::before && !menu.isEmpty()) {
            menu.addSeparator();
        }
        QAction* action = menu.addAction(trText(row.text));
        action->setShortcut(QKeySequence(QString::fromLatin1(row.keys)));
        // The tree itself has these keys; the menu tells them alone.
        action->setShortcutContext(Qt::WidgetShortcut);
        QObject::connect(action, &QAction::triggered, &menu,
                         [perform, what = row.action] { perform(what); });
    }
}

}  // namespace tessaly::desktop
