// SPDX-License-Identifier: MIT
#include "app/line_outline.h"

#include "grammar/line_parts.h"
#include "grammar/line_scanner.h"

namespace tessaly::app {

namespace {

using grammar::TodoType;
using OutlineKind = OutlineLine::Kind;

constexpr std::size_t blanksOfTab = 4;

std::size_t indentOf(std::string_view line) {
    std::size_t indent = 0;
    const std::size_t end = grammar::skipSpace(line, 0);
    for (const char c : line.substr(0, end)) {
        indent += c == '\t' ? blanksOfTab : 1;
    }
    return indent;
}

bool canHaveLines(const OutlineLine& line) {
    return line.kind == OutlineKind::heading || line.kind == OutlineKind::item;
}

/// Of a line that is not blank.
bool belongsTo(const OutlineLine& head, const OutlineLine& line) {
    const bool isHeading = line.kind == OutlineKind::heading;
    return head.kind == OutlineKind::heading ? !isHeading || line.level > head.level
                                             : !isHeading && line.indent > head.indent;
}

}  // namespace

OutlineLine outlineLine(std::string_view line, FenceState before) {
    // What kind a line is never depends on how a bare marker counts.
    const grammar::LineClass found = grammar::classifyLine(line, {});
    if (found.type == TodoType::empty) {
        return {};
    }
    const std::size_t indent = indentOf(line);
    if (before != FenceState::outside || found.type == TodoType::text ||
        found.type == TodoType::quote) {
        return {OutlineKind::text, 0, indent};
    }
    if (found.type == TodoType::title) {
        return {OutlineKind::heading, found.headingLevel, 0};
    }
    return {OutlineKind::item, 0, indent};
}

bool hasItsLines(std::size_t line, const OutlineLines& lines) {
    const auto head = lines(line);
    if (!head || !canHaveLines(*head)) {
        return false;
    }
    auto next = lines(++line);
    while (next && next->kind == OutlineKind::blank) {
        next = lines(++line);
    }
    return next && belongsTo(*head, *next);
}

std::optional<std::size_t> lastOfItsLines(std::size_t line, const OutlineLines& lines) {
    const auto head = lines(line);
    std::optional<std::size_t> last;
    if (!head || !canHaveLines(*head)) {
        return last;
    }
    for (auto next = lines(++line); next; next = lines(++line)) {
        if (next->kind == OutlineKind::blank) {
            continue;
        }
        if (!belongsTo(*head, *next)) {
            break;
        }
        last = line;
    }
    return last;
}

}  // namespace tessaly::app
