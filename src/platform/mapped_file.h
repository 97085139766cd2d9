// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "base/failure.h"
#include "ports/cache_files.h"

namespace tessaly::platform {

/// Maps a regular file of this user's, or of the system's, for reading. A link is not followed.
/// Reading where the file has been shortened meanwhile ends the process: a new one takes its name
/// instead, see `beginCacheFile`.
base::Result<std::shared_ptr<const ports::MappedFile>> mapFile(const std::string& file);

}  // namespace tessaly::platform
