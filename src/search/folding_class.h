// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace tessaly::search {

/// What folding a text makes of a character. Values below `plain` are marks: their canonical
/// combining class. They stay as they are, too, if they stand in canonical order.
enum class FoldingClass : std::uint8_t {
    unknown = 0,
    plain = 250,      ///< stays, whatever is around it; ASCII capitals count in here
    capital = 251,    ///< becomes `smallLetter` of it, unless a mark follows
    composing = 252,  ///< may melt into what is before it
    changing = 253,   ///< becomes something else
};

/// A text may be folded in two parts if the second begins with one of these.
constexpr bool beginsPart(FoldingClass c) {
    return c == FoldingClass::plain || c == FoldingClass::capital;
}

namespace detail {
/// What was asked before; it costs no more memory than the pages of characters that occur.
extern std::array<FoldingClass, 0x110000> knownFoldingClasses;
FoldingClass learnedFoldingClass(char32_t c);
}  // namespace detail

/// Any thread.
inline FoldingClass foldingClass(char32_t c) {
    const std::atomic_ref<FoldingClass> entry(detail::knownFoldingClasses[c]);
    const FoldingClass known = entry.load(std::memory_order_relaxed);
    return known != FoldingClass::unknown ? known : detail::learnedFoldingClass(c);
}

/// The one `plain` character that a `capital` becomes.
char32_t smallLetter(char32_t capital);

/// Canonical combining class; 0 of what is no mark.
std::uint8_t combiningClass(char32_t mark);

/// The combining class of the last mark that is part of a composed character; 0: there is none.
std::uint8_t lastCombiningClass(char32_t c);

/// What a character is composed of, in NFD: itself, if it is of one part.
std::u32string decomposition(char32_t c);

/// The one character that the two make, in NFC; nothing if they make none.
std::optional<char32_t> composition(char32_t starter, char32_t mark);

}  // namespace tessaly::search
