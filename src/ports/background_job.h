// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/failure.h"

namespace tessaly::ports {

/// Starts this program once more with these arguments (without its own name), for work that nobody
/// waits for: in a session of its own, without standard streams, at the lowest priority for
/// processor and disk. Returns when it has started; how it ends is not told. Any thread.
using BackgroundJob =
    std::function<base::Result<base::Done>(const std::vector<std::string>& arguments)>;

}  // namespace tessaly::ports
