// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/failure.h"

namespace tessaly::platform {

/// Files that a sync client has emptied to one byte and marked with an extended attribute. Only for
/// one of this size the attribute is asked for.
inline constexpr int placeholderSize = 1;

/// Of an open file, and of the entry at a path, a link not followed. A mark that cannot be asked
/// for is none.
bool hasPlaceholderMark(int fd);
bool hasPlaceholderMark(const std::string& path);

base::Failure placeholderFailure(const std::string& path);

}  // namespace tessaly::platform
