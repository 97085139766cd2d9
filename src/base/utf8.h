// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessaly::base {

/// One code point and the bytes it takes. Bytes that are no UTF-8 read as U+FFFD, one byte each,
/// so that a walk over any bytes ends and loses none.
struct CodePoint {
    char32_t value;
    unsigned size;  ///< bytes, 1–4
};

/// The code point that starts at byte `at`, which must be below `text.size()`.
CodePoint codePointBeyondAscii(std::string_view text, std::size_t at);
inline CodePoint codePointAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    return lead < 0x80 ? CodePoint{lead, 1} : codePointBeyondAscii(text, at);
}

/// The code point that ends just before byte `end`, which must be above 0.
CodePoint codePointBefore(std::string_view text, std::size_t end);

/// Appends the UTF-8 form of `value`; a surrogate or a value past U+10FFFF is written as U+FFFD.
void appendUtf8(std::string& text, char32_t value);

bool isAscii(std::string_view text);

/// Whether all of `text` is UTF-8: no overlong forms, surrogates or values past U+10FFFF.
bool isUtf8(std::string_view text);

/// The length of `text` in UTF-16 code units; every byte that is no UTF-8 counts as one.
std::size_t utf16Length(std::string_view text);

/// The byte at which UTF-16 unit `units` starts. Inside a surrogate pair: the start of its code
/// point. Past the end: the size of `text`.
std::size_t byteOffset(std::string_view text, std::size_t units);

std::u16string toUtf16(std::string_view text);
std::u32string toUtf32(std::string_view text);
/// Unpaired surrogates become U+FFFD.
std::string toUtf8(std::u16string_view text);

/// What some editors put before a text, and what is never part of it.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// `text` without a byte-order mark at its start.
constexpr std::string_view withoutByteOrderMark(std::string_view text) {
    return text.starts_with(byteOrderMark) ? text.substr(byteOrderMark.size()) : text;
}

/// Unicode's White_Space property.
constexpr bool isWhiteSpace(char32_t c) {
    if (c < 0x80) {
        return c == ' ' || (c >= 0x09 && c <= 0x0D);
    }
    return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

/// `text` without the white space (White_Space) at its start, its end or both.
std::string_view trimmedStart(std::string_view text);
std::string_view trimmedEnd(std::string_view text);
std::string_view trimmed(std::string_view text);

/// Lower case by Unicode's rules, in the root locale: the same in every country.
std::string lowerCased(std::string_view text);

}  // namespace tessaly::base
