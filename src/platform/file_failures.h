// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/failure.h"

namespace tessaly::platform {

/// Failures of files that no error number of the system's tells, in words for the user.

/// What stands at `path` is no longer what was read.
base::Failure changedFailure(const std::string& path);

/// Another program has it open for writing.
base::Failure busyFailure(const std::string& path);

base::Failure notAFileFailure(const std::string& path);

/// The kernel reads a path up to its first NUL: another path than the one that was meant.
bool holdsNul(const std::string& path);
base::Failure nulFailure(const std::string& path);

/// Done for 0, else the failure that the number tells.
base::Result<base::Done> resultOf(int error, const std::string& path);

}  // namespace tessaly::platform
