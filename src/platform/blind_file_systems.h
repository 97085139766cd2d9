// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tessaly::platform {

/// The name of the kind of file system with the magic number `type` (of statfs(2)), if that does
/// not report what others than this machine change in it; else empty.
std::string_view blindFileSystem(unsigned long type);

/// The same for the file system that an open folder is on.
std::string_view blindFileSystemOf(int folder);

}  // namespace tessaly::platform
