// SPDX-License-Identifier: MIT
#include "search/folding_class.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace tessaly::search {

namespace {

constexpr char32_t finalSigma = 0x03C2;

const icu::Normalizer2* normaliser() {
    static const icu::Normalizer2* const instance = [] {
        UErrorCode status = U_ZERO_ERROR;
        return icu::Normalizer2::getNFCInstance(status);
    }();
    return instance;
}

UNormalizationCheckResult composed(char32_t c) {
    return static_cast<UNormalizationCheckResult>(
        u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_NFC_QUICK_CHECK));
}

/// Stays in NFC and in lower case, and nothing before it matters to it.
bool isPlain(char32_t c) {
    const auto value = static_cast<UChar32>(c);
    return composed(c) == UNORM_YES && c != finalSigma &&
           u_hasBinaryProperty(value, UCHAR_CHANGES_WHEN_LOWERCASED) == 0 &&
           normaliser()->hasBoundaryBefore(value) != 0;
}

FoldingClass classify(char32_t c) {
    const auto value = static_cast<UChar32>(c);
    if (normaliser() == nullptr || composed(c) == UNORM_NO || c == finalSigma) {
        return FoldingClass::changing;
    }
    if (isPlain(c)) {
        return FoldingClass::plain;
    }
    if (u_hasBinaryProperty(value, UCHAR_CHANGES_WHEN_LOWERCASED) != 0) {
        // The one capital that becomes two characters is Turkish.
        constexpr char32_t dottedI = 0x0130;
        const bool isSimple =
            c != dottedI && isPlain(smallLetter(c)) && normaliser()->hasBoundaryBefore(value) != 0;
        return isSimple ? FoldingClass::capital : FoldingClass::changing;
    }
    return composed(c) == UNORM_MAYBE ? FoldingClass::composing
                                      : static_cast<FoldingClass>(combiningClass(c));
}

}  // namespace

constinit std::array<FoldingClass, 0x110000> detail::knownFoldingClasses{};

// Whoever comes at the same time finds out the same.
FoldingClass detail::learnedFoldingClass(char32_t c) {
    const FoldingClass learned = classify(c);
    std::atomic_ref(knownFoldingClasses[c]).store(learned, std::memory_order_relaxed);
    return learned;
}

char32_t smallLetter(char32_t capital) {
    return static_cast<char32_t>(u_tolower(static_cast<UChar32>(capital)));
}

std::uint8_t combiningClass(char32_t mark) {
    return u_getCombiningClass(static_cast<UChar32>(mark));
}

std::uint8_t lastCombiningClass(char32_t c) {
    return static_cast<std::uint8_t>(
        u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_TRAIL_CANONICAL_COMBINING_CLASS));
}

std::u32string decomposition(char32_t c) {
    icu::UnicodeString parts;
    if (normaliser() == nullptr ||
        normaliser()->getDecomposition(static_cast<UChar32>(c), parts) == 0) {
        return {c};
    }
    std::u32string result;
    for (std::int32_t at = 0; at < parts.length(); at = parts.moveIndex32(at, 1)) {
        result += static_cast<char32_t>(parts.char32At(at));
    }
    return result;
}

std::optional<char32_t> composition(char32_t starter, char32_t mark) {
    const UChar32 made =
        normaliser()->composePair(static_cast<UChar32>(starter), static_cast<UChar32>(mark));
    return made < 0 ? std::nullopt : std::optional(static_cast<char32_t>(made));
}

}  // namespace tessaly::search
