// SPDX-License-Identifier: MIT
#include "editor/move_lines.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "base/utf8.h"
#include "editor/selected_lines.h"

namespace tessaly::editor {

namespace {

/// Lines without the break that ends them, and where that ends. A carriage return at the end of the
/// text ends a line, too.
struct Block {
    ByteSpan lines;
    std::size_t breakEnd;
};

Block blockOf(std::string_view text, std::size_t start, std::size_t end) {
    const bool hasReturn = end > start && text[end - 1] == '\r';
    return {{start, end - (hasReturn ? 1 : 0)}, std::min(end + 1, text.size())};
}

Block blockAt(std::string_view text, ByteSpan selection) {
    const auto lines = linesTouched(text, selection);
    return blockOf(text, lines.front().start, lines.back().end);
}

std::size_t units(std::string_view text, std::size_t start, std::size_t end) {
    return base::utf16Length(text.substr(start, end - start));
}

/// Where a place in the moved lines, or right behind their break, comes to stand.
std::size_t moved(std::string_view before, const Block& block, std::size_t place,
                  std::string_view breakBehind, std::size_t newStart) {
    const std::size_t inside = std::min(place, block.lines.end);
    const std::size_t location = newStart + units(before, block.lines.start, inside);
    return place == block.breakEnd && place > block.lines.end ? location + breakBehind.size()
                                                              : location;
}

}  // namespace

std::optional<Edit> moveLines(std::string_view text, base::TextRange selection,
                              Direction direction) {
    const ByteSpan selected = bytesOf(text, selection);
    const Block block = blockAt(text, selected);
    const bool isUp = direction == Direction::up;
    const std::size_t edge = isUp ? block.lines.start : block.breakEnd;
    const bool isLine = block.lines.start < text.size();
    if (!isLine || edge == (isUp ? 0 : text.size())) {
        return std::nullopt;
    }
    const Block other = blockAt(text, isUp ? ByteSpan{edge - 1, edge - 1} : ByteSpan{edge, edge});
    const Block& upper = isUp ? other : block;
    const Block& lower = isUp ? block : other;
    // The breaks stay in their places, so that a last line without one stays without.
    const std::string_view between = ByteSpan{upper.lines.end, upper.breakEnd}.in(text);
    const std::string_view behind = ByteSpan{lower.lines.end, lower.breakEnd}.in(text);
    std::string replacement(lower.lines.in(text));
    replacement.append(between).append(upper.lines.in(text));

    const std::size_t start = units(text, 0, upper.lines.start);
    const std::size_t newStart =
        isUp ? start : start + base::utf16Length(lower.lines.in(text)) + between.size();
    const auto place = [&](std::size_t at) {
        return moved(text, block, at, isUp ? between : behind, newStart);
    };
    const std::size_t from = place(selected.start);
    return Edit{{start, units(text, upper.lines.start, lower.lines.end)},
                std::move(replacement),
                {from, place(selected.end) - from}};
}

}  // namespace tessaly::editor
