// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/failure.h"

namespace tessaly::ports {

/// Whether the state of a file in this folder (`FileStamp`) tells each change of its bytes, and the
/// folder's texts may lie in another one as readable as here. Failure `unavailable`: not on this
/// kind of file system; the description is its name. Looks at the folder alone, not below. Any
/// thread.
using TellingStamps = std::function<base::Result<base::Done>(const std::string& folder)>;

}  // namespace tessaly::ports
