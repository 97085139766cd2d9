// SPDX-License-Identifier: MIT
#include "editor/selected_lines.h"

#include <algorithm>

#include "base/utf8.h"

namespace tessaly::editor {

namespace {

std::size_t lineEnd(std::string_view text, std::size_t at) {
    return std::min(text.find('\n', at), text.size());
}

std::size_t placeOf(std::string_view text, std::size_t units) {
    const std::size_t at = base::byteOffset(text, units);
    const bool isInBreak = at > 0 && at < text.size() && text[at - 1] == '\r' && text[at] == '\n';
    return at - (isInBreak ? 1 : 0);
}

}  // namespace

std::size_t lineStart(std::string_view text, std::size_t at) {
    return at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
}

ByteSpan withoutReturn(std::string_view text, ByteSpan line) {
    return {line.start, line.end - (line.in(text).ends_with('\r') ? 1 : 0)};
}

ByteSpan bytesOf(std::string_view text, base::TextRange range) {
    const std::size_t start = placeOf(text, range.location);
    return {start, std::max(start, placeOf(text, range.end()))};
}

std::vector<ByteSpan> linesTouched(std::string_view text, ByteSpan selection) {
    std::vector<ByteSpan> lines;
    std::size_t start = lineStart(text, selection.start);
    do {
        lines.push_back({start, lineEnd(text, start)});
        start = lines.back().end + 1;
    } while (start < selection.end);
    return lines;
}

bool isBlank(std::string_view line) {
    return base::trimmedStart(line).empty();
}

}  // namespace tessaly::editor
