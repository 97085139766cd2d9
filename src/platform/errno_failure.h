// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"

namespace tessaly::platform {

/// The failure that error number `error` tells of `path`: "PATH: the system's words".
base::Failure errnoFailure(int error, std::string_view path);

/// A failure of a kind that the caller knows better, with the system's words for `error`.
base::Failure errnoFailure(int error, std::string_view path, base::Failure::Kind kind);

}  // namespace tessaly::platform
