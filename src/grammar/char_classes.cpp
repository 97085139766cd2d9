// SPDX-License-Identifier: MIT
#include "grammar/char_classes.h"

#include <string_view>

#include <unicode/uchar.h>

#include "base/utf8.h"

namespace tessaly::grammar {

namespace {

constexpr std::array<std::uint8_t, 128> makeAsciiClasses() {
    std::array<std::uint8_t, 128> classes{};
    const auto add = [&classes](std::string_view characters, std::uint8_t bits) {
        for (const char c : characters) {
            auto& entry = classes[static_cast<unsigned char>(c)];
            entry = static_cast<std::uint8_t>(entry | bits);
        }
    };
    add(" \t\n\v\f\r", char_class::space | char_class::beforeTag);
    add("!\"#%&'()*,-./:;?@[\\]_{}", char_class::punctuation);
    add("\"'([{", char_class::beforeTag);
    add("-_/", char_class::joiner);
    add("0123456789", char_class::digit);
    return classes;
}

}  // namespace

constexpr std::array<std::uint8_t, 128> asciiClassTable = makeAsciiClasses();
const std::array<std::uint8_t, 128> asciiClasses = asciiClassTable;

std::uint8_t classesBeyondAscii(char32_t c) {
    if (base::isWhiteSpace(c)) {
        return char_class::space | char_class::beforeTag;
    }
    const std::uint32_t category = U_MASK(u_charType(static_cast<UChar32>(c)));
    if ((category & U_GC_P_MASK) != 0) {
        return char_class::punctuation;
    }
    return (category & U_GC_ND_MASK) != 0 ? char_class::digit : std::uint8_t{0};
}

}  // namespace tessaly::grammar
