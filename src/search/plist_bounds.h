// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace tessaly::search {

/// What a binary property list begins with.
inline constexpr std::string_view binaryMagic = "bplist00";

/// The largest property list that is read, in bytes.
inline constexpr std::size_t maxPlistBytes = 1U << 20;

/// What a library must not be given: a small property list can stand for one that fills all memory,
/// nest until a stack is full, or take minutes to read. False for such a one, for one with a text
/// that would be cut short, and for some that are not well formed; the library finds the others.
bool isModestBinaryPlist(std::string_view bytes);
bool isModestXmlPlist(std::string_view bytes);

}  // namespace tessaly::search
