// SPDX-License-Identifier: MIT
#pragma once

#include "ports/file_system.h"

struct statx;

namespace tessaly::platform {

/// The fields of `statx` that a stamp is made from.
extern const unsigned stampFields;

ports::FileStamp stampOf(const struct statx& status);

}  // namespace tessaly::platform
