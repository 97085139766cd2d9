// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace tessaly::grammar {

/// The classes of characters that the patterns name, with ICU's meaning of each.
namespace char_class {
inline constexpr std::uint8_t space = 1;        ///< `\s`: White_Space
inline constexpr std::uint8_t punctuation = 2;  ///< `[:punct:]`: category P
inline constexpr std::uint8_t digit = 4;        ///< `\d`: category Nd
inline constexpr std::uint8_t beforeTag = 8;    ///< may stand before a tag's sign
inline constexpr std::uint8_t joiner = 16;  ///< `-`, `_` or `/`: punctuation that a name may hold
}  // namespace char_class

/// The classes of an ASCII character, as a set of the bits above.
extern const std::array<std::uint8_t, 128> asciiClasses;

/// The same of a character from U+0080 on.
std::uint8_t classesBeyondAscii(char32_t c);

inline std::uint8_t classesOf(char32_t c) {
    return c < 128 ? asciiClasses[c] : classesBeyondAscii(c);
}

/// Whether a tag's name may hold a character of these classes.
constexpr bool isNameClass(std::uint8_t classes) {
    return (classes & char_class::joiner) != 0 ||
           (classes & (char_class::space | char_class::punctuation)) == 0;
}

/// What `.` does not match, and where `^` and `$` match inside a line.
constexpr bool isLineTerminator(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

}  // namespace tessaly::grammar
