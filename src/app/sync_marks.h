// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "ports/cloud_folders.h"
#include "ports/file_system.h"

namespace tessaly::app {

/// The nearest folder, `folder` itself or one above it, in which a sync client has left a mark.
std::optional<ports::CloudFolder> markedFolder(ports::FileSystem& files, const std::string& folder);

}  // namespace tessaly::app
