// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "ports/file_changes.h"

namespace tessaly::platform {

/// Files written as a whole, whatever stood there: to a temporary file in the same folder, to the
/// disk, and then to their name in one step, so that a reader or a power cut meets the old bytes or
/// the new ones. After a failure nothing has changed and no temporary file is left.

/// Failure `exists`: there is something of that name, and it is untouched.
base::Result<base::Done> writeNewFile(const std::string& file, std::string_view bytes,
                                      ports::Readers readers, ports::Durability durability);

/// Puts `bytes` in the place of a file, which keeps its permissions, or makes it. A link stays one:
/// the file that it leads to is replaced.
base::Result<base::Done> replaceFile(const std::string& file, std::string_view bytes);

}  // namespace tessaly::platform
