// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "base/failure.h"
#include "ports/cache_files.h"

namespace tessaly::platform {

/// Begins a file that is to be called `file`, in a folder that is there; see
/// ports::CacheFiles::create. Until then it is called "FILE.writing" and locked, so that the
/// remains of a writer that died are told from the work of one that lives, and are used again.
base::Result<std::unique_ptr<ports::NewCacheFile>> beginCacheFile(const std::string& file);

}  // namespace tessaly::platform
