// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/completion_view.h"

class QKeyEvent;

namespace tessaly::desktop {

/// What a key does to what is offered; none: it is the editor's.
enum class CompletionKey { none, leave, take, next, previous, monthLater, monthEarlier };

/// With modifiers a key never is for what is offered.
CompletionKey completionKeyOf(const QKeyEvent& event, CompletionView::Shown shown);

}  // namespace tessaly::desktop
