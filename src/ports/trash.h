// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/failure.h"

namespace tessaly::ports {

/// Moves a file to the desktop's trash, from which the user can take it back. Failure: it stays
/// where it was (a volume without a trash is `unavailable`). Any thread.
using Trash = std::function<base::Result<base::Done>(const std::string& file)>;

}  // namespace tessaly::ports
