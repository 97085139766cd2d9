// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tasks/operation.h"

namespace tessaly::tasks {

/// The shortest stretch of whole characters in which two versions of a file differ; empty when they
/// are equal.
ByteChange changeBetween(std::string_view before, std::string_view after);

/// `bytes` as `change` leaves them; nothing when it cannot have been made of them.
std::optional<std::string> changed(std::string_view bytes, const ByteChange& change);

/// The change that leads back.
ByteChange inverse(const ByteChange& change);

}  // namespace tessaly::tasks
