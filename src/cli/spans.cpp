// SPDX-License-Identifier: MIT
#include "cli/spans.h"

#include <algorithm>
#include <array>

#include "base/graphemes.h"

namespace tessaly::cli {

namespace {

// Numbers of the terminal's own palette, so that lines read well on light and dark grounds alike.
// By `Style`.
constexpr std::array<std::string_view, 18> codes{"",     "1;4", "1",  "2",  "36", "35",
                                                 "33",   "33",  "32", "2",  "94", "2;9",
                                                 "1;31", "33",  "32", "31", "36", "1;31"};

std::string_view codeOf(Style style) {
    return codes[static_cast<std::size_t>(style)];
}

std::string_view dots(const Terminal& terminal) {
    return terminal.isUtf8 ? "…" : "...";
}

/// The longest beginning of `text` that takes at most `columns` columns.
std::string_view fitting(std::string_view text, std::size_t columns) {
    std::size_t bytes = 0;
    std::size_t used = 0;
    while (bytes < text.size()) {
        const std::string_view next = base::firstGraphemes(text.substr(bytes), 1);
        used += base::terminalWidth(next);
        if (used > columns) {
            break;
        }
        bytes += next.size();
    }
    return text.substr(0, bytes);
}

/// The longest end of `text` that takes at most `columns` columns.
std::string_view fittingEnd(std::string_view text, std::size_t columns) {
    while (base::terminalWidth(text) > columns) {
        text.remove_prefix(base::firstGraphemes(text, 1).size());
    }
    return text;
}

/// What stands at the right keeps its end: the line number of an address, the date of a row.
Spans cutAtStart(const Spans& spans, std::size_t columns, const Terminal& terminal) {
    const std::size_t width = widthOf(spans);
    if (width <= columns) {
        return spans;
    }
    Spans cut{{Style::dim, std::string{dots(terminal)}}};
    std::size_t tooMany = width + widthOf(cut) - columns;
    for (const Span& span : spans) {
        const std::size_t spanWidth = base::terminalWidth(span.text);
        const std::size_t away = std::min(tooMany, spanWidth);
        cut.push_back({span.style, std::string{fittingEnd(span.text, spanWidth - away)}});
        tooMany -= away;
    }
    return cut;
}

}  // namespace

std::size_t widthOf(const Spans& spans) {
    std::size_t width = 0;
    for (const Span& span : spans) {
        width += base::terminalWidth(span.text);
    }
    return width;
}

Spans cutTo(const Spans& spans, std::size_t columns, const Terminal& terminal) {
    if (widthOf(spans) <= columns) {
        return spans;
    }
    const std::string_view ending = dots(terminal);
    const std::size_t endingWidth = base::terminalWidth(ending);
    std::size_t room = columns > endingWidth ? columns - endingWidth : 0;
    Spans cut;
    for (const Span& span : spans) {
        const std::string_view kept = fitting(span.text, room);
        cut.push_back({span.style, std::string{kept}});
        if (kept.size() < span.text.size()) {
            break;
        }
        room -= base::terminalWidth(kept);
    }
    cut.push_back({Style::dim, std::string{ending}});
    return cut;
}

Spans withRightPart(const Spans& left, const Spans& right, const Terminal& terminal) {
    constexpr std::size_t gap = 2;
    const Spans shown = cutAtStart(right, terminal.columns / 2 - gap, terminal);
    const std::size_t rightWidth = widthOf(shown);
    if (rightWidth == 0) {
        return cutTo(left, terminal.columns, terminal);
    }
    Spans line = cutTo(left, terminal.columns - rightWidth - gap, terminal);
    const std::size_t blanks = terminal.columns - rightWidth - widthOf(line);
    line.push_back({Style::plain, std::string(blanks, ' ')});
    line.insert(line.end(), shown.begin(), shown.end());
    return line;
}

std::string drawn(const Spans& spans, const Terminal& terminal) {
    std::string text;
    for (const Span& span : spans) {
        const std::string_view code = codeOf(span.style);
        if (!terminal.hasColors || code.empty() || span.text.empty()) {
            text += span.text;
            continue;
        }
        text.append("\x1b[").append(code).append("m").append(span.text).append("\x1b[0m");
    }
    return text;
}

}  // namespace tessaly::cli
