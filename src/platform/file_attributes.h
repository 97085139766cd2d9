// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>

namespace tessaly::platform {

/// Gives an open file the extended attributes (access control lists among them), owner, group and
/// permissions of another, `status` being the other's. What the system or the file system does not
/// let us give is left out, save permissions that it does not have: 0, or the error's number. Where
/// the group cannot be had, the group that it gets instead may do no more than everybody.
int copyAttributes(int from, const struct stat& status, int to);

}  // namespace tessaly::platform
