// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace tessaly::base {

/// How many code points must be inserted, removed or replaced to make one text the other. The time
/// is the product of the lengths: leave out long texts before.
std::size_t editDistance(std::u32string_view a, std::u32string_view b);

}  // namespace tessaly::base
