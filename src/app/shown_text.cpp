// SPDX-License-Identifier: MIT
#include "app/shown_text.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "store/line_diff.h"

namespace tessaly::app {
namespace {

constexpr std::array<std::string_view, 6> lineEnds{
    "\r\n", "\n", "\r", "\u2029", "\xEF\xB7\x90", "\xEF\xB7\x91"};  // the last: U+FDD0, U+FDD1
constexpr std::size_t portableEnds = 3;  ///< so many of them are line ends elsewhere

struct EndedLine {
    std::string_view text;
    std::string_view end;
};

constexpr bool mayBeginEnd(char c) {
    return c == '\n' || c == '\r' || c == '\xE2' || c == '\xEF';
}

/// The line end that begins at a place; empty: none does.
std::string_view lineEndAt(std::string_view text, std::size_t at) {
    if (!mayBeginEnd(text[at])) {
        return {};
    }
    const std::string_view rest = text.substr(at);
    const auto found = std::find_if(lineEnds.begin(), lineEnds.end(),
                                    [&](auto end) { return rest.starts_with(end); });
    return found == lineEnds.end() ? std::string_view{} : rest.substr(0, found->size());
}

/// What follows the last end is a line too, which has none.
std::vector<EndedLine> endedLines(std::string_view text) {
    std::vector<EndedLine> lines;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view end = lineEndAt(text, at);
        if (end.empty()) {
            ++at;
            continue;
        }
        lines.push_back({text.substr(start, at - start), end});
        at += end.size();
        start = at;
    }
    lines.push_back({text.substr(start), {}});
    return lines;
}

bool hasOnlyPlainEnds(std::string_view text) {
    return text.find('\r') == std::string_view::npos &&
           std::none_of(lineEnds.begin() + portableEnds, lineEnds.end(),
                        [&](auto end) { return text.find(end) != std::string_view::npos; });
}

bool isPortable(std::string_view end) {
    return std::find(lineEnds.begin(), lineEnds.begin() + portableEnds, end) !=
           lineEnds.begin() + portableEnds;
}

std::string_view commonestEnd(std::span<const EndedLine> lines) {
    std::array<std::ptrdiff_t, portableEnds> counts{};
    for (std::size_t i = 0; i < portableEnds; ++i) {
        counts[i] = std::count_if(lines.begin(), lines.end(),
                                  [&](const EndedLine& line) { return line.end == lineEnds[i]; });
    }
    const auto most = std::max_element(counts.begin(), counts.end());
    return *most == 0 ? "\n" : lineEnds[static_cast<std::size_t>(most - counts.begin())];
}

/// Puts lines together, whose ends are wished for.
class NoteWriter {
public:
    NoteWriter(std::string_view commonest, std::size_t size) : _lastEnd(commonest) {
        _text.reserve(size);
    }

    /// No end wished for: one is found. What the line behind it is, is not known yet.
    void add(std::string_view text, std::string_view end) {
        if (end.empty()) {
            end = _lastEnd;
        }
        if (text.empty() && end == "\n" && _text.ends_with('\r')) {
            end = "\r";
        }
        _text.append(text).append(end);
        if (isPortable(end)) {
            _lastEnd = end;
        }
    }
    void addLast(std::string_view text) { _text.append(text); }
    std::string take() && { return std::move(_text); }

private:
    std::string _text;
    std::string_view _lastEnd;
};

/// The ends that lines of the new text had in the old one; empty: none is known.
class EndWishes {
public:
    EndWishes(std::span<const EndedLine> old, std::span<const std::string_view> lines)
        : _old(old), _ends(lines.size()) {
        std::size_t head = 0;
        const std::size_t shorter = std::min(old.size(), lines.size());
        while (head < shorter && old[head].text == lines[head]) {
            _ends[head] = old[head].end;
            ++head;
        }
        std::size_t tail = 0;
        while (tail < shorter - head &&
               old[old.size() - 1 - tail].text == lines[lines.size() - 1 - tail]) {
            _ends[lines.size() - 1 - tail] = old[old.size() - 1 - tail].end;
            ++tail;
        }
        middle(head, old.size() - tail, lines.subspan(0, lines.size() - tail));
    }

    std::string_view of(std::size_t line) const { return _ends[line]; }

private:
    void middle(std::size_t start, std::size_t oldEnd, std::span<const std::string_view> lines) {
        std::vector<std::string_view> oldLines;
        for (std::size_t i = start; i < oldEnd; ++i) {
            oldLines.push_back(_old[i].text);
        }
        std::size_t from = start;  // of the old lines
        std::size_t to = start;
        const auto keep = [&](std::size_t untilOld) {
            while (from < untilOld) {
                _ends[to++] = _old[from++].end;
            }
        };
        for (const store::LineHunk& hunk : store::diffLines(oldLines, lines.subspan(start))) {
            keep(start + hunk.oldStart);
            for (std::size_t i = 0; i < std::min(hunk.oldCount, hunk.newCount); ++i) {
                _ends[to + i] = _old[from + i].end;
            }
            from += hunk.oldCount;
            to += hunk.newCount;
        }
        keep(oldEnd);
    }

    std::span<const EndedLine> _old;
    std::vector<std::string_view> _ends;
};

}  // namespace

std::string shownText(std::string_view noteText) {
    if (hasOnlyPlainEnds(noteText)) {
        return std::string(noteText);
    }
    std::string shown;
    shown.reserve(noteText.size());
    for (const EndedLine& line : endedLines(noteText)) {
        shown.append(line.text).append(line.end.empty() ? "" : "\n");
    }
    return shown;
}

std::string noteTextOf(std::string_view noteText, std::string_view shown) {
    if (hasOnlyPlainEnds(noteText)) {
        return std::string(shown);
    }
    const std::vector<EndedLine> old = endedLines(noteText);
    const std::vector<std::string_view> lines = store::linesOfText(shown);
    const EndWishes wishes(old, lines);
    NoteWriter writer(commonestEnd(old), noteText.size() + shown.size() / 8);
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        writer.add(lines[i], wishes.of(i));
    }
    writer.addLast(lines.back());
    return std::move(writer).take();
}

std::size_t shownLineOf(std::string_view noteText, std::size_t noteLine) {
    std::size_t shown = 0;
    for (const EndedLine& line : endedLines(noteText)) {
        if (noteLine == 0 || line.end.empty()) {
            break;
        }
        noteLine -= line.end.ends_with('\n') ? 1 : 0;
        ++shown;
    }
    return shown;
}

std::size_t noteLineOf(std::string_view noteText, std::size_t shownLine) {
    std::size_t found = 0;
    for (const EndedLine& line : endedLines(noteText)) {
        if (shownLine == 0 || line.end.empty()) {
            break;
        }
        found += line.end.ends_with('\n') ? 1 : 0;
        --shownLine;
    }
    return found;
}

}  // namespace tessaly::app
