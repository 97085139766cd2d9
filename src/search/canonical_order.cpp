// SPDX-License-Identifier: MIT
#include "search/canonical_order.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/utf8.h"
#include "search/folding_class.h"

namespace tessaly::search {

namespace {

struct Character {
    char32_t value;
    std::uint8_t place;  // combining class
};

/// Stands for a byte that is no UTF-8.
constexpr char32_t beyondUnicode = 0x110000;

std::vector<Character> decomposed(std::string_view text) {
    std::vector<Character> characters;
    for (std::size_t at = 0; at < text.size();) {
        const base::CodePoint c = base::codePointAt(text, at);
        if (c.size == 1 && c.value >= 0x80) {
            characters.push_back({beyondUnicode + static_cast<unsigned char>(text[at]), 0});
        } else {
            for (const char32_t part : decomposition(c.value)) {
                characters.push_back({part, combiningClass(part)});
            }
        }
        at += c.size;
    }
    return characters;
}

}  // namespace

std::string inCanonicalOrder(std::string_view text) {
    std::vector<Character> characters = decomposed(text);
    const auto isStarter = [](const Character& c) { return c.place == 0; };
    for (auto at = characters.begin(); at != characters.end();) {
        const auto end = std::find_if(at, characters.end(), isStarter);
        std::stable_sort(at, end,
                         [](const Character& a, const Character& b) { return a.place < b.place; });
        at = std::find_if_not(end, characters.end(), isStarter);
    }
    std::string result;
    for (const Character& c : characters) {
        if (c.value >= beyondUnicode) {
            result += static_cast<char>(c.value - beyondUnicode);
        } else {
            base::appendUtf8(result, c.value);
        }
    }
    return result;
}

}  // namespace tessaly::search
