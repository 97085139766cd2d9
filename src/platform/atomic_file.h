// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"

namespace tessaly::platform {

/// Files written as a whole: to a temporary file in the same folder (`.~NAME.RANDOM~`), to the
/// disk, and then to their name in one step, so that a reader or a power cut meets the old bytes or
/// the new ones. After a failure nothing has changed and no temporary file is left.

/// Failure `exists`: there is something of that name, and it is untouched.
base::Result<base::Done> writeNewFile(const std::string& file, std::string_view bytes);

/// Puts `bytes` in the place of a file, which keeps its permissions, or makes it. A link stays one:
/// the file that it leads to is replaced.
base::Result<base::Done> replaceFile(const std::string& file, std::string_view bytes);

/// The name of a temporary file beside `name`, at most 255 bytes, another one each time.
std::string temporaryName(std::string_view name);

}  // namespace tessaly::platform
