// SPDX-License-Identifier: MIT
#include "grammar/sign_cursor.h"

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessaly::grammar {

namespace {

constexpr std::size_t blockSize = 64;

#if defined(__SSE2__)

std::uint64_t signsOf16(const char* bytes) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const auto equal = [block](char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
    // "<" and ">" differ in one bit alone.
    const __m128i angles =
        _mm_cmpeq_epi8(_mm_or_si128(block, _mm_set1_epi8('<' ^ '>')), _mm_set1_epi8('>'));
    const __m128i signs =
        _mm_or_si128(_mm_or_si128(equal('\n'), equal('#')), _mm_or_si128(equal('@'), angles));
    return static_cast<unsigned>(_mm_movemask_epi8(signs));
}

std::uint64_t signsOf64(const char* bytes) {
    return signsOf16(bytes) | signsOf16(bytes + 16) << 16 | signsOf16(bytes + 32) << 32 |
           signsOf16(bytes + 48) << 48;
}

#else

std::uint64_t signsOf64(const char* bytes) {
    std::uint64_t signs = 0;
    for (std::size_t i = 0; i < blockSize; ++i) {
        const char c = bytes[i];
        const bool isSign = c == '\n' || c == '#' || c == '@' || c == '<' || c == '>';
        signs |= static_cast<std::uint64_t>(isSign) << i;
    }
    return signs;
}

#endif

}  // namespace

void SignCursor::readBlock() {
    _block = _next;
    const char* bytes = _text.data() + _block;
    const std::size_t left = _text.size() - _block;
    if (left >= blockSize) {
        _signs = signsOf64(bytes);
    } else {
        std::array<char, blockSize> last{};
        std::memcpy(last.data(), bytes, left);
        _signs = signsOf64(last.data());
    }
    _next = _block + std::min(left, blockSize);
}

}  // namespace tessaly::grammar
