// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tessaly::platform {

/// The bytes of open files. Numbers returned are 0 or the error's.

/// Writes all of `bytes` where the file stands.
int writeAll(int fd, std::string_view bytes);

/// Adds the bytes of one file, from where it stands to its end, to another.
int copyBytes(int from, int to);

/// Whether a file holds these bytes and no others. No, also when it cannot be read.
bool holdsBytes(int fd, std::string_view bytes);

/// Whether two files hold the same bytes. No, also when one cannot be read.
bool holdSameBytes(int one, int other);

int syncBytes(int fd);

}  // namespace tessaly::platform
