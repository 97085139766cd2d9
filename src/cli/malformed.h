// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "base/failure.h"

namespace tessaly::cli {

/// What was given cannot be understood; `words` tell the user why.
inline base::Failure malformed(std::string words) {
    return {base::Failure::Kind::malformed, std::move(words)};
}

}  // namespace tessaly::cli
