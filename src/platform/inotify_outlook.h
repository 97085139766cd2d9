// SPDX-License-Identifier: MIT
#pragma once

#include "ports/watch_outlook.h"

namespace tessaly::platform {

/// Of inotify(7) on this machine.
ports::WatchOutlooks inotifyOutlook();

}  // namespace tessaly::platform
