// SPDX-License-Identifier: MIT
#include "tasks/line_matching.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace tessaly::tasks {

LineMatching::LineMatching(std::span<const LineEdit> edits, const TextLines& lines,
                           const LinePlaces& places)
    : _edits(edits), _editOf(lines.size(), nowhere), _lineOf(edits.size(), nowhere) {
    std::unordered_map<std::string_view, Indices> groups;
    for (std::size_t at = 0; at < edits.size(); ++at) {
        if (takesLine(edits[at])) {
            groups[edits[at].before].push_back(at);
        }
    }
    for (auto& [text, group] : groups) {
        std::stable_sort(group.begin(), group.end(), [&](std::size_t a, std::size_t b) {
            return edits[a].index < edits[b].index;
        });
        match(group, places.of(text));
    }
}

void LineMatching::take(std::size_t edit, std::size_t line) {
    _editOf[line] = edit;
    _lineOf[edit] = line;
}

void LineMatching::match(const Indices& group, const Indices& places) {
    // As many as are asked for: they may have moved, but not past each other.
    if (group.size() != places.size()) {
        matchByIndex(group, places);
    }
    if (group.size() >= places.size()) {
        matchInOrder(group, places);
    }
}

void LineMatching::matchByIndex(const Indices& group, const Indices& places) {
    for (const std::size_t edit : group) {
        const std::size_t line = _edits[edit].index;
        if (std::binary_search(places.begin(), places.end(), line) && _editOf[line] == nowhere) {
            take(edit, line);
        }
    }
}

void LineMatching::matchInOrder(const Indices& group, const Indices& places) {
    auto line = places.begin();
    for (const std::size_t edit : group) {
        line = std::find_if(line, places.end(), [&](auto at) { return _editOf[at] == nowhere; });
        if (line == places.end()) {
            return;
        }
        if (_lineOf[edit] == nowhere) {
            take(edit, *line);
        }
    }
}

}  // namespace tessaly::tasks
