// SPDX-License-Identifier: MIT
#pragma once

#include "ports/trash_return.h"

namespace tessaly::platform {

/// From the desktop's trash as freedesktop.org lays it out, where `gioTrash` puts things: the
/// user's own, and that of the volume.
ports::TrashReturn trashReturn();

}  // namespace tessaly::platform
