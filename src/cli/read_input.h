// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <string>

#include "base/failure.h"
#include "ports/file_system.h"

namespace tessaly::cli {

/// The bytes of a file, or of standard input when `path` is "-": at most `ports::maxFileBytes`.
base::Result<std::string> readInput(ports::FileSystem& files, const std::string& path,
                                    const std::atomic<bool>& cancelled);

}  // namespace tessaly::cli
