// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/failure.h"

namespace tessaly::ports {

/// Takes one thing out of the trash, to where it lay; its folder is there. Failure `exists`: there
/// is something else by now, and nothing has changed; `notFound`: it is no longer in the trash.
using TakeBack = std::function<base::Result<base::Done>()>;

/// Finds in the desktop's trash what lay at `path`, an absolute one, and went last. `notFound`: it
/// is not there. Any thread.
using TrashReturn = std::function<base::Result<TakeBack>(const std::string& path)>;

}  // namespace tessaly::ports
