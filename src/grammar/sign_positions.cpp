// SPDX-License-Identifier: MIT
#include "grammar/sign_positions.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessaly::grammar {

namespace {

constexpr std::size_t blockSize = 64;

bool isSign(char c) {
    return c == '\n' || c == '#' || c == '@' || c == '<' || c == '>';
}

#if defined(__SSE2__)

std::uint64_t signsOf16(const char* bytes) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const auto equal = [block](char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
    // "<" and ">" differ in one bit alone.
    const __m128i angles =
        _mm_cmpeq_epi8(_mm_or_si128(block, _mm_set1_epi8('<' ^ '>')), _mm_set1_epi8('>'));
    const __m128i signs =
        _mm_or_si128(_mm_or_si128(equal('\n'), equal('#')), _mm_or_si128(equal('@'), angles));
    return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(signs)));
}

std::uint64_t signsOfBlock(const char* bytes) {
    return signsOf16(bytes) | signsOf16(bytes + 16) << 16 | signsOf16(bytes + 32) << 32 |
           signsOf16(bytes + 48) << 48;
}

#else

std::uint64_t signsOfBlock(const char* bytes) {
    std::uint64_t signs = 0;
    for (std::size_t i = 0; i < blockSize; ++i) {
        signs |= static_cast<std::uint64_t>(isSign(bytes[i])) << i;
    }
    return signs;
}

#endif

}  // namespace

void appendSignPositions(std::string_view text, std::size_t from, std::size_t to,
                         std::vector<std::uint32_t>& positions) {
    for (; to - from >= blockSize; from += blockSize) {
        for (std::uint64_t signs = signsOfBlock(text.data() + from); signs != 0;
             signs &= signs - 1) {
            positions.push_back(static_cast<std::uint32_t>(from) +
                                static_cast<std::uint32_t>(std::countr_zero(signs)));
        }
    }
    for (; from < to; ++from) {
        if (isSign(text[from])) {
            positions.push_back(static_cast<std::uint32_t>(from));
        }
    }
}

}  // namespace tessaly::grammar
