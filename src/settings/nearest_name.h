// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

namespace tessaly::settings {

/// The name that was probably meant by `typed`: the one with the fewest letters changed, added or
/// left out, case apart. Empty: none is near.
std::string_view nearestName(std::string_view typed, std::span<const std::string_view> names);

}  // namespace tessaly::settings
