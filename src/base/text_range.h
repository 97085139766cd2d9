// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstddef>

namespace tessaly::base {

/// A stretch of a text in UTF-16 code units. Every range that leaves a function is of this kind;
/// byte offsets stay inside the scanners.
struct TextRange {
    std::size_t location = 0;
    std::size_t length = 0;

    constexpr std::size_t end() const { return location + length; }
    auto operator<=>(const TextRange&) const = default;
};

}  // namespace tessaly::base
