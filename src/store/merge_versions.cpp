// SPDX-License-Identifier: MIT
#include "store/merge_versions.h"

#include <algorithm>
#include <vector>

#include "store/line_diff.h"
#include "store/line_ends.h"
#include "store/three_way_merge.h"

namespace tessaly::store {

namespace {

struct VersionLines {
    std::vector<std::string_view> lines;
    bool endsInBreak;

    explicit VersionLines(std::string_view plain)
        : lines(linesOfText(plain)), endsInBreak(plain.ends_with('\n')) {
        if (lines.back().empty()) {
            lines.pop_back();
        }
    }
    bool endsWith(std::string_view line) const { return !lines.empty() && lines.back() == line; }
};

// An empty line is its break.
bool endsInBreak(std::string_view last, const VersionLines& mine, const VersionLines& theirs) {
    if (last.empty()) {
        return true;
    }
    return mine.endsWith(last) ? mine.endsInBreak : theirs.endsInBreak;
}

std::string allLines(std::string_view mine, std::string_view theirs) {
    const VersionLines myText(mine);
    const VersionLines theirText(theirs);
    std::string text;
    std::string_view last;
    const auto add = [&](const VersionLines& from, std::size_t start, std::size_t end) {
        for (; start < end; ++start) {
            last = from.lines[start];
            text.append(last).append(1, '\n');
        }
    };
    std::size_t next = 0;
    for (const LineHunk& hunk : diffLines(myText.lines, theirText.lines)) {
        add(myText, next, hunk.oldStart + hunk.oldCount);
        add(theirText, hunk.newStart, hunk.newStart + hunk.newCount);
        next = hunk.oldStart + hunk.oldCount;
    }
    add(myText, next, myText.lines.size());
    if (!text.empty() && !endsInBreak(last, myText, theirText)) {
        text.pop_back();
    }
    return text;
}

// A current version without a break has no say in what breaks are.
LineEnds endsOfResult(std::span<const std::string_view> versions) {
    LineEnds ends = lineEndsOf(versions.front());
    for (const std::string_view version : versions) {
        if (version.find('\n') != std::string_view::npos) {
            ends.isCarriageReturn = lineEndsOf(version).isCarriageReturn;
            break;
        }
    }
    return ends;
}

template <class Merge>
std::string folded(std::span<const std::string_view> versions, const Merge& merge) {
    const std::string current = plainText(versions.front());
    std::string merged = current;
    for (const std::string_view version : versions.subspan(1)) {
        merged = merge(merged, plainText(version));
    }
    return merged == current ? std::string(versions.front())
                             : withLineEnds(merged, endsOfResult(versions));
}

}  // namespace

std::string mergeVersions(std::string_view base, std::span<const std::string_view> versions) {
    return folded(versions, [&](const std::string& mine, const std::string& theirs) {
        return threeWayMerge(base, mine, theirs);
    });
}

std::string mergeVersions(std::span<const std::string_view> versions) {
    return folded(versions, allLines);
}

}  // namespace tessaly::store
