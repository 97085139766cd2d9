// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace tessaly::store {

/// The lines of a text: what stands between its "\n", so that a text that ends in one has an empty
/// last line, and joining them with "\n" gives the text again. They point into `text`.
std::vector<std::string_view> linesOfText(std::string_view text);

/// Old lines that were replaced by new ones: either may be none.
struct LineHunk {
    std::size_t oldStart;
    std::size_t oldCount;
    std::size_t newStart;
    std::size_t newCount;

    bool operator==(const LineHunk&) const = default;
};

/// What must be replaced in `from` to have `to`: hunks in order, with at least one equal line
/// between them. Short where texts are alike; its cost stays near linear where they are not, at the
/// price of larger hunks.
std::vector<LineHunk> diffLines(std::span<const std::string_view> from,
                                std::span<const std::string_view> to);

}  // namespace tessaly::store
