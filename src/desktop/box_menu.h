// SPDX-License-Identifier: MIT
#pragma once

#include "grammar/todo.h"

class QMenu;
class QWidget;

namespace tessaly::desktop {

/// What can be done with a task by its box, besides the click that completes it. The actions are
/// those of `window`, and work on the line of the caret.
void fillBoxMenu(QMenu& menu, const QWidget& window, grammar::TodoType state);

}  // namespace tessaly::desktop
