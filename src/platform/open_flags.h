// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>

namespace tessaly::platform {

/// For a file that is to be read. Neither waits for a pipe's other end nor lets a terminal take the
/// process over.
inline constexpr int readFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

}  // namespace tessaly::platform
