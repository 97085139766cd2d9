// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "ports/file_system.h"

namespace tessaly::store {

/// Whether every part of a relative path is the name of something below its folder: none is empty,
/// "." or "..", and there is no NUL.
bool namesOnly(std::string_view path);

/// The refusal of a name that leads out of the data folder.
base::Failure outside(std::string_view filename);

/// The path of `relative` below `root`, for a name that may come from outside: `outside` when it is
/// not made of names only, or when a link leads out of `root`. Nothing of it need exist.
base::Result<std::string> pathInside(ports::FileSystem& files, const std::string& root,
                                     std::string_view relative);

}  // namespace tessaly::store
