// SPDX-License-Identifier: MIT
#pragma once

class QMenu;
class QWidget;

namespace tessaly::desktop {

class CommandActions;

/// The menu behind the header's "…" button: every command, a submenu a group, those of the program
/// at the end. There is no menu bar. `parent` owns it.
QMenu* makeMainMenu(const CommandActions& actions, QWidget* parent);

}  // namespace tessaly::desktop
