// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace tessaly::grammar {

/// Appends the byte offsets in [`from`, `to`) of `text` at which a line break or a sign that may
/// open a mark stands: "\n", "#", "@", "<" and ">". This is the only pass that touches every byte
/// of every note; all later work jumps from one of these places to the next.
void appendSignPositions(std::string_view text, std::size_t from, std::size_t to,
                         std::vector<std::uint32_t>& positions);

}  // namespace tessaly::grammar
