// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace tessaly::base {

/// The number of user-perceived characters (extended grapheme clusters, UAX #29).
std::size_t graphemeCount(std::string_view text);

/// The first `count` user-perceived characters of `text`, or all of it when it has fewer.
std::string_view firstGraphemes(std::string_view text, std::size_t count);

/// The longest beginning of `text` that takes at most `bytes` bytes and ends between two
/// user-perceived characters.
std::string_view cutToBytes(std::string_view text, std::size_t bytes);

/// Columns that `text` takes in a terminal: wide East Asian characters and emoji take two,
/// combining marks and invisible characters none.
std::size_t terminalWidth(std::string_view text);

}  // namespace tessaly::base
