// SPDX-License-Identifier: MIT
#include "grammar/line_parts.h"

#include "base/utf8.h"
#include "grammar/char_classes.h"

namespace tessaly::grammar {

namespace {

using base::TodoCharacter;

/// The first bytes of the line terminators in UTF-8. None of them continues another character.
bool mayBeginTerminator(char c) {
    return (c >= '\n' && c <= '\r') || c == '\xC2' || c == '\xE2';
}

std::size_t numberEnd(std::string_view line, std::size_t place) {
    std::size_t end = place;
    while (isDigit(charAt(line, end))) {
        ++end;
    }
    const char sign = charAt(line, end);
    return end > place && (sign == '.' || sign == ')') ? end + 1 : 0;
}

}  // namespace

std::size_t skipSpace(std::string_view line, std::size_t place) {
    while (place < line.size()) {
        const base::CodePoint c = base::codePointAt(line, place);
        if (!base::isWhiteSpace(c.value)) {
            break;
        }
        place += c.size;
    }
    return place;
}

std::size_t signEnd(std::string_view line, std::size_t place, Quotes quotes,
                    TodoCharacter& marker) {
    switch (charAt(line, place)) {
        case '*': marker = TodoCharacter::asterisk; return place + 1;
        case '-': marker = TodoCharacter::dash; return place + 1;
        case '>': return quotes == Quotes::yes ? place + 1 : 0;
        default: break;
    }
    const std::size_t end = numberEnd(line, place);
    if (end != 0) {
        marker = TodoCharacter::number;
    }
    return end;
}

std::size_t markerEnd(std::string_view line, std::size_t place, Quotes quotes,
                      TodoCharacter& marker) {
    const std::size_t end = signEnd(line, place, quotes, marker);
    return end != 0 && charAt(line, end) == ' ' ? end + 1 : 0;
}

Box boxAt(std::string_view line, std::size_t place) {
    constexpr Box none{TodoType::empty, 0};
    if (charAt(line, place) != '[' || place + 1 >= line.size()) {
        return none;
    }
    const base::CodePoint state = base::codePointAt(line, place + 1);
    const std::size_t close = place + 1 + state.size;
    if (charAt(line, close) != ']' || charAt(line, close + 1) != ' ') {
        return none;
    }
    const std::size_t end = close + 2;
    switch (state.value) {
        case 'x': return {TodoType::done, end};
        case '-': return {TodoType::cancelled, end};
        case '>': return {TodoType::scheduled, end};
        default: return base::isWhiteSpace(state.value) ? Box{TodoType::open, end} : none;
    }
}

std::string_view upToTerminator(std::string_view text) {
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (mayBeginTerminator(text[place]) &&
            isLineTerminator(base::codePointAt(text, place).value)) {
            return text.substr(0, place);
        }
    }
    return text;
}

}  // namespace tessaly::grammar
