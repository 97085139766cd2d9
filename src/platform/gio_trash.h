// SPDX-License-Identifier: MIT
#pragma once

#include "ports/trash.h"

namespace tessaly::platform {

/// The desktop's trash by GIO (g_file_trash), laid out as freedesktop.org has it; needs
/// no session bus.
ports::Trash gioTrash();

}  // namespace tessaly::platform
