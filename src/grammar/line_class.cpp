// SPDX-License-Identifier: MIT
#include <algorithm>

#include "grammar/line_parts.h"
#include "grammar/line_scanner.h"

namespace tessaly::grammar {

namespace {

using base::TodoCharacter;

TodoType bareType(TodoCharacter marker, const MarkerSettings& settings) {
    const bool counts = marker == TodoCharacter::asterisk ? settings.isAsteriskTodo
                        : marker == TodoCharacter::dash   ? settings.isDashTodo
                                                          : settings.isNumbersTodo;
    return counts ? TodoType::open : TodoType::list;
}

void classifyItem(std::string_view line, std::size_t boxStart, const MarkerSettings& settings,
                  LineClass& found) {
    const Box box = boxAt(line, boxStart);
    found.hasBox = box.end != 0;
    found.type = found.hasBox ? box.type : bareType(found.marker, settings);
    found.boxStart = static_cast<std::uint32_t>(boxStart);
    found.contentStart = static_cast<std::uint32_t>(found.hasBox ? box.end : boxStart);
}

/// A heading's opener stands at the very start of the line.
bool classifyHeading(std::string_view line, LineClass& found) {
    std::size_t level = 0;
    while (charAt(line, level) == '#') {
        ++level;
    }
    if (level == 0 || charAt(line, level) != ' ') {
        return false;
    }
    found.type = TodoType::title;
    found.headingLevel = static_cast<std::uint32_t>(level);
    found.contentStart = static_cast<std::uint32_t>(level + 1);
    return true;
}

/// Most lines of prose need no second look.
bool startsWithLetter(std::string_view line) {
    const auto lower = static_cast<unsigned char>(charAt(line, 0) | 0x20);
    return lower >= 'a' && lower <= 'z';
}

}  // namespace

LineClass classifyLine(std::string_view line, const MarkerSettings& settings) {
    LineClass found;
    if (startsWithLetter(line)) {
        found.type = TodoType::text;
        return found;
    }
    const std::size_t tabs = std::min(line.find_first_not_of('\t'), line.size());
    const std::size_t text = skipSpace(line, tabs);
    found.indents = static_cast<std::uint32_t>(tabs);
    if (text == line.size()) {
        return found;
    }
    if (const std::size_t end = markerEnd(line, text, Quotes::no, found.marker); end != 0) {
        classifyItem(line, end, settings, found);
    } else if (classifyHeading(line, found)) {
        return found;
    } else if (line[text] == '>' && charAt(line, text + 1) == ' ') {
        found.type = TodoType::quote;
        found.contentStart = static_cast<std::uint32_t>(text + 2);
    } else {
        found.type = TodoType::text;
    }
    return found;
}

std::string_view contentOf(std::string_view line, const LineClass& found) {
    if (found.contentStart == 0) {
        return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
    }
    return upToTerminator(line.substr(found.contentStart));
}

}  // namespace tessaly::grammar
