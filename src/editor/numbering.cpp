// SPDX-License-Identifier: MIT
#include "editor/numbering.h"

#include <charconv>
#include <limits>
#include <system_error>

#include "base/graphemes.h"
#include "base/log.h"
#include "base/utf8.h"
#include "editor/selected_lines.h"
#include "grammar/line_parts.h"

namespace tessaly::editor {

namespace {

constexpr std::size_t loggedGraphemes = 200;

/// The digits of the marker that a line's text begins with; empty where it has no number.
std::string_view numberOf(std::string_view content) {
    auto marker = base::TodoCharacter::asterisk;
    const std::size_t end = grammar::markerEnd(content, 0, grammar::Quotes::no, marker);
    return end == 0 || marker != base::TodoCharacter::number
               ? std::string_view()
               : content.substr(0, content.find_first_not_of("0123456789"));
}

}  // namespace

std::optional<std::uint64_t> numberAfter(std::string_view digits) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
    const bool isWhole = error == std::errc() && end == digits.end();
    return isWhole && number < std::numeric_limits<std::uint64_t>::max() ? std::optional(number + 1)
                                                                         : std::nullopt;
}

void logNoNumberAfter(std::string_view line) {
    base::log("Could not increment numberin text: ", base::firstGraphemes(line, loggedGraphemes));
}

std::size_t indentationOf(std::string_view line) {
    const std::size_t bytes = line.size() - base::trimmedStart(line).size();
    return base::utf16Length(line.substr(0, bytes));
}

Numbering Numbering::before(std::string_view text, std::size_t place) {
    std::size_t start = place;
    while (start > 0) {
        const std::size_t above = lineStart(text, start - 1);
        if (isBlank(text.substr(above, start - 1 - above))) {
            break;
        }
        start = above;
    }
    Numbering result;
    while (start < place) {
        const std::size_t end = text.find('\n', start);
        result.pass(text.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

std::uint64_t Numbering::next(std::size_t indentation) const {
    for (auto item = _items.rbegin(); item != _items.rend(); ++item) {
        if (item->indentation < indentation) {
            break;
        }
        if (item->indentation > indentation) {
            continue;
        }
        if (!item->next) {
            logNoNumberAfter(item->line);
        }
        return item->next.value_or(1);
    }
    return 1;
}

void Numbering::pass(std::string_view line) {
    const std::string_view content = base::trimmedStart(line);
    if (content.empty()) {
        return;
    }
    const std::size_t indentation = indentationOf(line);
    while (!_items.empty() && _items.back().indentation >= indentation) {
        _items.pop_back();
    }
    if (const std::string_view digits = numberOf(content); !digits.empty()) {
        const auto next = numberAfter(digits);
        const std::string_view logged =
            next ? std::string_view() : base::firstGraphemes(line, loggedGraphemes);
        _items.push_back({indentation, next, std::string(logged)});
    }
}

}  // namespace tessaly::editor
