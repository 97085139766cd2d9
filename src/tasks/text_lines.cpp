// SPDX-License-Identifier: MIT
#include "tasks/text_lines.h"

#include <algorithm>

#include "store/text_edits.h"

namespace tessaly::tasks {
namespace {

std::string_view breakBehind(const TextLine& line, std::string_view usual) {
    if (line.end.ends_with('\n')) {
        return line.end;
    }
    return line.end.empty() ? usual : "\r\n";
}

bool isLastEnded(const TextLine& line, std::string_view before) {
    return before.ends_with('\n') || (line.text.empty() && line.end != "\r");
}

}  // namespace

TextLines linesIn(std::string_view text) {
    TextLines lines;
    while (!text.empty()) {
        const std::size_t next = std::min(text.find('\n'), text.size() - 1) + 1;
        std::string_view line = text.substr(0, next);
        line.remove_suffix(line.ends_with('\n') ? 1 : 0);
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        lines.push_back({line, text.substr(line.size(), next - line.size())});
        text.remove_prefix(next);
    }
    return lines;
}

std::string joinedLines(const TextLines& lines, std::string_view before) {
    const std::string_view usual = store::lineBreakOf(before);
    std::string text;
    text.reserve(before.size());
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const TextLine& line = lines[at];
        text.append(line.text);
        if (at + 1 < lines.size() || isLastEnded(line, before)) {
            text.append(breakBehind(line, usual));
        } else if (line.end == "\r") {
            text.append(line.end);
        }
    }
    return text;
}

std::string anchorOf(const TextLines& lines, std::size_t place) {
    return place == 0 ? std::string() : std::string(lines[place - 1].text);
}

void LinePlaces::fill(const TextLines& lines) {
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (const auto row = _places.find(lines[at].text); row != _places.end()) {
            row->second.push_back(at);
        }
    }
}

}  // namespace tessaly::tasks
