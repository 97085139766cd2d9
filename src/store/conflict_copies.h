// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "ports/file_system.h"

namespace tessaly::store {

/// The conflict copies that lie beside notes, in order, each once. `notes`, and what is returned,
/// are paths relative to `root`. Each folder is listed once; one that cannot be listed has none.
std::vector<std::string> conflictCopiesOf(ports::FileSystem& files, const std::string& root,
                                          const std::vector<std::string>& notes);

}  // namespace tessaly::store
