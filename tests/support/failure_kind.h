// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "base/failure.h"

namespace tessaly::tests {

/// Nothing: it was done.
template <class T>
std::optional<base::Failure::Kind> failureKind(const base::Result<T>& result) {
    return result ? std::nullopt : std::optional{result.failure().kind};
}

}  // namespace tessaly::tests
