// SPDX-License-Identifier: MIT
#include "store/unified_diff.h"

#include <algorithm>
#include <span>
#include <vector>

#include <fmt/format.h>

#include "store/line_diff.h"

namespace tessaly::store {

namespace {

constexpr std::size_t contextLines = 3;

/// With their "\n", so that a last line without one differs from the same line with one.
std::vector<std::string_view> linesWithBreaks(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::size_t size = end == std::string_view::npos ? text.size() : end + 1;
        lines.push_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

bool needsQuotes(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F || c == '"' || c == '\\';
}

std::string quoted(std::string_view name) {
    std::string text = "\"";
    for (const char c : name) {
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (needsQuotes(c)) {
            text += fmt::format("\\{:03o}", static_cast<unsigned char>(c));
        } else {
            text += c;
        }
    }
    return text + '"';
}

/// `patch` takes what stands behind a blank for a date, unless a tab comes before that.
std::string headerName(std::string_view name) {
    if (name.empty()) {
        return "/dev/null";
    }
    if (std::any_of(name.begin(), name.end(), needsQuotes)) {
        return quoted(name);
    }
    std::string text(name);
    return name.find(' ') == std::string_view::npos ? text : text + '\t';
}

/// "7,2" for lines 7 and 8 of a text; a range of no lines begins at the line before it.
std::string rangeText(std::size_t start, std::size_t count) {
    const std::size_t first = count == 0 ? start : start + 1;
    return count == 1 ? fmt::format("{}", first) : fmt::format("{},{}", first, count);
}

class HunkWriter {
public:
    HunkWriter(std::span<const std::string_view> oldLines,
               std::span<const std::string_view> newLines, std::string& out)
        : _old(oldLines), _new(newLines), _out(out) {}

    /// Changes that are near enough to share their context.
    void write(std::span<const LineHunk> changes) {
        const LineHunk& first = changes.front();
        const LineHunk& last = changes.back();
        const std::size_t before = std::min(contextLines, first.oldStart);
        const std::size_t oldEnd = last.oldStart + last.oldCount;
        const std::size_t after = std::min(contextLines, _old.size() - oldEnd);
        const std::size_t oldStart = first.oldStart - before;
        const std::size_t newStart = first.newStart - before;
        const std::size_t newEnd = last.newStart + last.newCount;
        _out += fmt::format("@@ -{} +{} @@\n", rangeText(oldStart, oldEnd + after - oldStart),
                            rangeText(newStart, newEnd + after - newStart));
        std::size_t next = oldStart;
        for (const LineHunk& change : changes) {
            put(' ', _old.subspan(next, change.oldStart - next));
            put('-', _old.subspan(change.oldStart, change.oldCount));
            put('+', _new.subspan(change.newStart, change.newCount));
            next = change.oldStart + change.oldCount;
        }
        put(' ', _old.subspan(next, after));
    }

private:
    void put(char sign, std::span<const std::string_view> lines) {
        for (const std::string_view line : lines) {
            _out += sign;
            _out += line;
            if (!line.ends_with('\n')) {
                _out += "\n\\ No newline at end of file\n";
            }
        }
    }

    std::span<const std::string_view> _old;
    std::span<const std::string_view> _new;
    std::string& _out;
};

/// How many of the first changes have no more lines between them than their contexts take.
std::size_t groupSize(std::span<const LineHunk> changes) {
    std::size_t size = 1;
    while (size < changes.size() &&
           changes[size].oldStart - changes[size - 1].oldStart - changes[size - 1].oldCount <=
               2 * contextLines) {
        ++size;
    }
    return size;
}

}  // namespace

std::string unifiedDiff(std::string_view oldName, std::string_view oldText,
                        std::string_view newName, std::string_view newText) {
    if (oldText == newText) {
        return {};
    }
    const std::vector<std::string_view> oldLines = linesWithBreaks(oldText);
    const std::vector<std::string_view> newLines = linesWithBreaks(newText);
    const std::vector<LineHunk> all = diffLines(oldLines, newLines);
    std::string out = fmt::format("--- {}\n+++ {}\n", headerName(oldName), headerName(newName));
    HunkWriter writer(oldLines, newLines, out);
    for (std::span<const LineHunk> rest = all; !rest.empty();) {
        const std::size_t size = groupSize(rest);
        writer.write(rest.first(size));
        rest = rest.subspan(size);
    }
    return out;
}

}  // namespace tessaly::store
