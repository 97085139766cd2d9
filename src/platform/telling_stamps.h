// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"

namespace tessaly::platform {

/// The name of the kind of file system with the magic number `type` (of statfs(2)), if the state of
/// a file there may stay the same when its bytes change, or its texts are meant to be unreadable
/// elsewhere; else empty. Those that are blind to what others change belong to them: their states
/// may come out of a cache.
std::string_view fileSystemWithoutStamps(unsigned long type);

/// `ports::TellingStamps`, by the file system that the folder is on.
base::Result<base::Done> tellingStamps(const std::string& folder);

}  // namespace tessaly::platform
