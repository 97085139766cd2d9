// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/text_range.h"
#include "base/todo_character.h"
#include "base/utf8.h"
#include "editor/edit.h"
#include "editor/editor_commands.h"
#include "editor/numbering.h"
#include "editor/selected_lines.h"
#include "editor/splices.h"
#include "grammar/line_scanner.h"
#include "grammar/todo.h"

namespace tessaly::editor {

namespace {

/// The beginning of a numbered item with the number that comes next.
std::string withNextNumber(std::string_view line, std::string prefix) {
    const std::size_t start = line.size() - base::trimmedStart(line).size();
    const std::size_t length = prefix.find_first_of(".)") - start;
    const auto next = numberAfter(line.substr(start, length));
    if (!next) {
        logNoNumberAfter(line);
    }
    return prefix.replace(start, length, std::to_string(next.value_or(1)));
}

/// What the line after this one begins with; nothing if it is no item, task or quote.
std::optional<std::string> nextPrefix(std::string_view line, const grammar::LineClass& found) {
    if (found.type == grammar::TodoType::quote) {
        return std::string(line.substr(0, found.contentStart));
    }
    if (!grammar::isTask(found.type) && found.type != grammar::TodoType::list) {
        return std::nullopt;
    }
    std::string prefix(line.substr(0, found.boxStart));
    if (found.marker == base::TodoCharacter::number) {
        prefix = withNextNumber(line, std::move(prefix));
    }
    return found.hasBox ? prefix + "[ ] " : prefix;
}

/// That of the line, or, if it is the last, that of the text.
std::string_view lineBreakAt(std::string_view text, std::size_t lineEnd) {
    const std::size_t at = lineEnd < text.size() ? lineEnd : text.find('\n');
    const bool hasReturn = at != std::string_view::npos && at > 0 && text[at - 1] == '\r';
    return hasReturn ? "\r\n" : "\n";
}

Edit editWithCursorBehind(std::string_view text, Splice splice) {
    const std::size_t location =
        base::utf16Length(text.substr(0, splice.at)) + base::utf16Length(splice.with);
    return editOf(text, {std::move(splice)}, {location, 0});
}

}  // namespace

std::optional<Edit> continueList(std::string_view text, base::TextRange selection) {
    ByteSpan selected = bytesOf(text, selection);
    const ByteSpan whole = linesTouched(text, {selected.start, selected.start}).front();
    std::string_view line = whole.in(text);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    const std::size_t lineEnd = whole.start + line.size();
    selected.start = std::min(selected.start, lineEnd);

    const grammar::LineClass found = grammar::classifyLine(line, {});
    const auto prefix = nextPrefix(line, found);
    if (!prefix || selected.start < whole.start + found.contentStart) {
        return std::nullopt;
    }
    if (isBlank(line.substr(found.contentStart)) && selected.end <= whole.end) {
        const std::size_t marker = lineEnd - base::trimmedStart(line).size();
        return editWithCursorBehind(text, {marker, lineEnd - marker, ""});
    }
    return editWithCursorBehind(text, {selected.start, selected.end - selected.start,
                                       std::string(lineBreakAt(text, whole.end)) + *prefix});
}

}  // namespace tessaly::editor
