// SPDX-License-Identifier: MIT
#include "search/needle.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "search/byte_pair.h"
#include "search/lowered_ascii.h"

namespace tessaly::search {

namespace {

/// How common each byte is in notes, roughly: the higher, the commoner.
constexpr std::array<std::uint8_t, 256> makeCommonness() {
    constexpr std::string_view fromRareToCommon =
        "\t~^`|{}%$&+=;<>\\'\"!?_()[],@#/:9876543zqjx210.-\r*\nkvwybpgfmucdlhrosinate ";
    std::array<std::uint8_t, 256> commonness{};
    for (std::size_t i = 0; i < fromRareToCommon.size(); ++i) {
        commonness[static_cast<unsigned char>(fromRareToCommon[i])] =
            static_cast<std::uint8_t>(i + 1);
    }
    // Where a script is not ASCII, its characters share their first bytes.
    constexpr std::uint8_t continuation = 40;
    constexpr std::uint8_t lead = 200;
    for (std::size_t byte = 0x80; byte < 0x100; ++byte) {
        commonness[byte] = byte < 0xC0 ? continuation : lead;
    }
    return commonness;
}
constexpr std::array<std::uint8_t, 256> commonness = makeCommonness();

/// The place of the rarest byte, but for `except`; 0 where there is no other.
std::size_t rarestPlace(std::string_view text, std::size_t except) {
    std::size_t rarest = except == 0 && text.size() > 1 ? 1 : 0;
    for (std::size_t i = rarest + 1; i < text.size(); ++i) {
        const auto rank = [text](std::size_t at) {
            return commonness[static_cast<unsigned char>(text[at])];
        };
        if (i != except && rank(i) < rank(rarest)) {
            rarest = i;
        }
    }
    return rarest;
}

/// How many bytes at the start of `needle` stand at `text`, which is as long as that at least.
std::size_t commonStart(const char* text, std::string_view needle) {
    std::size_t i = 0;
    while (i < needle.size() && loweredAscii(text[i]) == needle[i]) {
        ++i;
    }
    return i;
}

/// For each beginning of `needle`, the length of the longest shorter one that it ends with.
std::vector<std::size_t> borders(std::string_view needle) {
    std::vector<std::size_t> result(needle.size() + 1, 0);
    for (std::size_t i = 1, border = 0; i < needle.size(); ++i) {
        while (border > 0 && needle[i] != needle[border]) {
            border = result[border];
        }
        border += needle[i] == needle[border] ? 1 : 0;
        result[i + 1] = border;
    }
    return result;
}

/// Knuth, Morris and Pratt's: never goes back in the haystack.
std::size_t findSteadily(std::string_view haystack, std::size_t from, std::string_view needle) {
    const std::vector<std::size_t> shorter = borders(needle);
    std::size_t matched = 0;
    for (std::size_t at = from; at < haystack.size(); ++at) {
        const char c = loweredAscii(haystack[at]);
        while (matched > 0 && c != needle[matched]) {
            matched = shorter[matched];
        }
        matched += c == needle[matched] ? 1 : 0;
        if (matched == needle.size()) {
            return at + 1 - matched;
        }
    }
    return Needle::npos;
}

}  // namespace

Needle::Needle(std::string foldedText)
    : _text(std::move(foldedText)),
      _rareFirst(rarestPlace(_text, npos)),
      _rareSecond(rarestPlace(_text, _rareFirst)) {}

std::size_t Needle::find(std::string_view haystack, std::size_t from) const {
    if (from > haystack.size() || haystack.size() - from < _text.size()) {
        return npos;
    }
    if (_text.empty()) {
        return from;
    }
    // Comparing at each place where the pair stands is quick until somebody writes a text against
    // it.
    constexpr std::size_t comparedPerByte = 4;
    constexpr std::size_t comparedAnyway = 4096;
    std::size_t compared = 0;
    bool isTedious = false;
    const auto accepts = [&](std::size_t at) {
        const std::size_t common = commonStart(haystack.data() + at, _text);
        compared += common;
        isTedious = compared > comparedAnyway + comparedPerByte * (at - from);
        return common == _text.size() || isTedious;
    };
    const BytePair pair({_rareFirst, _text[_rareFirst]}, {_rareSecond, _text[_rareSecond]});
    const std::size_t end = haystack.size() - _text.size() + 1;
    const std::size_t found = pair.find(haystack.data(), from, end, accepts);
    if (found == end) {
        return npos;
    }
    return isTedious ? findSteadily(haystack, found, _text) : found;
}

}  // namespace tessaly::search
