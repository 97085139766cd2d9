// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessaly::app {

/// Of `titles`, those that the user who wrote `wanted` may have meant: a few letters differ, or
/// `wanted` stands within. The nearest first, at most `atMost`, none twice. Case does not matter.
std::vector<std::string> nearTitles(std::string_view wanted, const std::vector<std::string>& titles,
                                    std::size_t atMost);

}  // namespace tessaly::app
