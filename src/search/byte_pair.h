// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessaly::search {

/// Two bytes at fixed places behind a position. A byte stands for itself; a small ASCII letter
/// stands for the capital, too.
class BytePair {
public:
    struct Place {
        std::size_t offset;  ///< behind the position
        char byte;
    };

    BytePair(Place first, Place second)
        : _first(first),
          _second(second),
          _firstCase(caseBit(first.byte)),
          _secondCase(caseBit(second.byte)) {}

    /// The first position from `from` on and before `end` where the two stand and `accepts` (given
    /// the position) says yes; `end`: there is none. Reads the bytes of the places at these
    /// positions, and no others.
    template <class Accepts>
    std::size_t find(const char* text, std::size_t from, std::size_t end, Accepts accepts) const {
        std::size_t at = from;
        std::size_t found = end;
        const auto isFoundIn = [&](std::uint64_t hits, std::size_t start) {
            for (; hits != 0; hits &= hits - 1) {
                const std::size_t hit = start + static_cast<std::size_t>(std::countr_zero(hits));
                if (accepts(hit)) {
                    found = hit;
                    return true;
                }
            }
            return false;
        };
        for (; at + 4 * width <= end; at += 4 * width) {
            const std::uint64_t hits = hitsAt(text + at) | hitsAt(text + at + width) << width |
                                       hitsAt(text + at + 2 * width) << 2 * width |
                                       hitsAt(text + at + 3 * width) << 3 * width;
            if (isFoundIn(hits, at)) {
                return found;
            }
        }
        for (; at + width <= end; at += width) {
            if (isFoundIn(hitsAt(text + at), at)) {
                return found;
            }
        }
        if (at < end && end - from >= width) {
            // The last few, together with some that have been looked at.
            isFoundIn(hitsAt(text + end - width) >> (at + width - end), at);
        } else {
            isFoundIn(hitsOneByOne(text + at, end - at), at);
        }
        return found;
    }

private:
    static constexpr std::size_t width = 16;  // positions looked at in one step

    static constexpr char caseBit(char byte) { return byte >= 'a' && byte <= 'z' ? 0x20 : 0; }

    std::uint64_t hitsOneByOne(const char* text, std::size_t count) const {
        std::uint64_t hits = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const bool isHit = (text[i + _first.offset] | _firstCase) == _first.byte &&
                               (text[i + _second.offset] | _secondCase) == _second.byte;
            hits |= std::uint64_t{isHit} << i;
        }
        return hits;
    }

#if defined(__SSE2__)
    static __m128i equal(const char* text, char byte, char caseBit) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
        return _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(caseBit)), _mm_set1_epi8(byte));
    }

    /// Bit i: the pair stands at position i of `text`.
    std::uint64_t hitsAt(const char* text) const {
        const __m128i both = _mm_and_si128(equal(text + _first.offset, _first.byte, _firstCase),
                                           equal(text + _second.offset, _second.byte, _secondCase));
        return static_cast<std::uint64_t>(_mm_movemask_epi8(both));
    }
#else
    std::uint64_t hitsAt(const char* text) const {
        return hitsOneByOne(text, width);
    }
#endif

    Place _first;
    Place _second;
    char _firstCase;
    char _secondCase;
};

}  // namespace tessaly::search
