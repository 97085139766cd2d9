// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "ports/file_changes.h"

namespace tessaly::platform {

/// Adds bytes at the end of a file, or makes it; see ports::FileChanges::append.
base::Result<base::Done> appendToFile(const std::string& file, std::string_view bytes,
                                      ports::Durability durability);

}  // namespace tessaly::platform
