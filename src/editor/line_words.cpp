// SPDX-License-Identifier: MIT
#include "editor/line_words.h"

#include <algorithm>

#include "base/todo_character.h"
#include "base/utf8.h"
#include "grammar/line_parts.h"

namespace tessaly::editor {

namespace {

using grammar::charAt;

/// Behind a box of these patterns, which know but one blank in it, and its blank.
std::size_t boxEnd(std::string_view line, std::size_t place) {
    constexpr std::string_view states = " x>-";
    const bool isBox = states.find(charAt(line, place + 1)) != std::string_view::npos;
    return std::max(place, isBox ? grammar::boxAt(line, place).end : 0);
}

}  // namespace

bool isHeading(std::string_view line) {
    return prefixEnd(line) != 0 && charAt(line, grammar::skipSpace(line, 0)) == '#';
}

std::size_t prefixEnd(std::string_view line) {
    const std::size_t start = grammar::skipSpace(line, 0);
    const std::size_t hashes = std::min(line.find_first_not_of('#', start), line.size());
    if (hashes > start) {
        return charAt(line, hashes) == ' ' ? hashes + 1 : 0;
    }
    auto marker = base::TodoCharacter::asterisk;
    return grammar::markerEnd(line, start, grammar::Quotes::yes, marker);
}

ByteSpan wordsIn(std::string_view line) {
    if (isBlank(line)) {
        return {};
    }
    const std::size_t behindPrefix = boxEnd(line, prefixEnd(line));
    const std::size_t start = grammar::skipSpace(line, behindPrefix);
    const std::size_t length = grammar::upToTerminator(line.substr(start)).size();
    return length == 0 ? ByteSpan{behindPrefix, behindPrefix}
                       : withoutBlanks(line, {start, start + length});
}

ByteSpan withoutBlanks(std::string_view text, ByteSpan span) {
    const std::size_t start = span.end - base::trimmedStart(span.in(text)).size();
    return {start, start + base::trimmedEnd(ByteSpan{start, span.end}.in(text)).size()};
}

}  // namespace tessaly::editor
