// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/failure.h"
#include "platform/still_file.h"
#include "ports/file_system.h"

namespace tessaly::platform {

/// Removes a file, or the link to it, if it still is what `read` tells (`changed` else).
base::Result<base::Done> removeIfStill(const std::string& file, const ports::FileContents& read,
                                       const ChangeNames& rename = giveFreeName);

/// Removes the name of a file that is held if the file still is as expected. It is renamed first,
/// so that what another program put there in the last moment can be put back. `rename` is
/// giveFreeName.
base::Result<base::Done> removeHeld(const StillFile& file, FolderName name,
                                    const StillFile::Expected& expected, const std::string& path,
                                    const ChangeNames& rename = giveFreeName);

}  // namespace tessaly::platform
