// SPDX-License-Identifier: MIT
#include "base/graphemes.h"

#include <algorithm>
#include <cstdint>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include "base/character_iterator.h"
#include "base/utf8.h"

namespace tessaly::base {

namespace {

/// Whether every byte is a user-perceived character. Of ASCII only CR and LF can be one together.
bool isOnePerByte(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80 && c != '\r'; });
}

/// The borders between the user-perceived characters of a text, as byte offsets. Without ICU's
/// data every code point counts as one.
class Borders {
public:
    explicit Borders(std::string_view text) : _text(text), _iterator(characterIterator(text)) {}

    /// The border behind `from`, which must be one itself and below the size of the text.
    std::size_t after(std::size_t from) {
        if (_iterator == nullptr) {
            return from + codePointAt(_text, from).size;
        }
        const std::int32_t found = ubrk_next(_iterator);
        return found == UBRK_DONE ? _text.size() : static_cast<std::size_t>(found);
    }

    /// A border before byte `offset`, which must be above 0, close to it.
    std::size_t before(std::size_t offset) {
        if (_iterator == nullptr) {
            return 0;
        }
        const std::int32_t found = ubrk_preceding(_iterator, static_cast<std::int32_t>(offset));
        return found == UBRK_DONE ? 0 : static_cast<std::size_t>(found);
    }

private:
    std::string_view _text;
    UBreakIterator* _iterator;
};

bool isInvisible(char32_t c) {
    constexpr std::uint32_t categories =
        U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK | U_GC_CC_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK;
    const auto sort = u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_HANGUL_SYLLABLE_TYPE);
    return (U_GET_GC_MASK(static_cast<UChar32>(c)) & categories) != 0 || sort == U_HST_VOWEL_JAMO ||
           sort == U_HST_TRAILING_JAMO;
}

bool isWide(char32_t c) {
    const auto width = u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

bool hasSkinTone(std::string_view cluster) {
    std::size_t at = codePointAt(cluster, 0).size;
    while (at < cluster.size()) {
        const CodePoint c = codePointAt(cluster, at);
        if (u_hasBinaryProperty(static_cast<UChar32>(c.value), UCHAR_EMOJI_MODIFIER)) {
            return true;
        }
        at += c.size;
    }
    return false;
}

/// The columns of one user-perceived character. An emoji takes two, however many code points make
/// it; U+FE0F makes one of the character before it. Most terminals draw a skin tone beside it:
/// where one does not, a gap is better than a line that breaks.
std::size_t columns(std::string_view cluster) {
    constexpr char32_t emojiStyle = 0xFE0F;
    std::size_t sum = 0;
    bool couldBeEmoji = false;
    for (std::size_t at = 0; at < cluster.size();) {
        const CodePoint c = codePointAt(cluster, at);
        const auto value = static_cast<UChar32>(c.value);
        if (u_hasBinaryProperty(value, UCHAR_EMOJI_PRESENTATION) ||
            (c.value == emojiStyle && couldBeEmoji)) {
            return hasSkinTone(cluster) ? 4 : 2;
        }
        couldBeEmoji = u_hasBinaryProperty(value, UCHAR_EMOJI);
        sum += isInvisible(c.value) ? 0 : isWide(c.value) ? 2 : 1;
        at += c.size;
    }
    return sum;
}

}  // namespace

std::size_t graphemeCount(std::string_view text) {
    if (isOnePerByte(text)) {
        return text.size();
    }
    Borders borders(text);
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at = borders.after(at)) {
        ++count;
    }
    return count;
}

std::string_view firstGraphemes(std::string_view text, std::size_t count) {
    if (count >= text.size()) {
        return text;
    }
    if (isOnePerByte(text.substr(0, count + 1))) {
        return text.substr(0, count);
    }
    Borders borders(text);
    std::size_t at = 0;
    for (; at < text.size() && count > 0; --count) {
        at = borders.after(at);
    }
    return text.substr(0, at);
}

std::string_view cutToBytes(std::string_view text, std::size_t bytes) {
    if (bytes >= text.size()) {
        return text;
    }
    if (bytes == 0 || isOnePerByte(text.substr(0, bytes + 1))) {
        return text.substr(0, bytes);
    }
    Borders borders(text);
    std::size_t at = borders.before(bytes);
    for (auto next = borders.after(at); next <= bytes; next = borders.after(at)) {
        at = next;
    }
    return text.substr(0, at);
}

std::size_t terminalWidth(std::string_view text) {
    std::size_t width = 0;
    Borders borders(text);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = borders.after(at);
        width += columns(text.substr(at, end - at));
        at = end;
    }
    return width;
}

}  // namespace tessaly::base
