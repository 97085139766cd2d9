// SPDX-License-Identifier: MIT
#include "store/three_way_merge.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "store/line_diff.h"
#include "store/task_line_merge.h"

namespace tessaly::store {

namespace {

using Lines = std::vector<std::string_view>;
constexpr std::size_t none = static_cast<std::size_t>(-1);

/// A text as lines that each end in "\n", but for the last, which may not.
struct Text {
    Lines lines;
    bool endsInBreak;

    explicit Text(std::string_view text)
        : lines(linesOfText(text)), endsInBreak(text.ends_with('\n')) {
        if (lines.back().empty()) {
            lines.pop_back();
        }
    }
    bool endsWith(std::string_view line) const { return !lines.empty() && lines.back() == line; }
};

/// A line that the base has not.
struct NewLine {
    std::string_view text;
    std::size_t gap;       ///< it stands before this line of the base
    std::size_t replaced;  ///< the line of the base that it is a version of; `none` for a new one
};

/// What one side made of the base.
struct Changes {
    std::vector<bool> isKept;  ///< of each line of the base
    std::vector<NewLine> newLines;
};

/// Finds out what the new lines of a hunk stand for.
class HunkReader {
public:
    HunkReader(std::span<const std::string_view> base, std::span<const std::string_view> side,
               Changes& changes)
        : _base(base), _side(side), _changes(changes) {}

    void read(const LineHunk& hunk) {
        std::size_t baseNext = hunk.oldStart;
        std::size_t sideNext = hunk.newStart;
        for (const auto& [baseLine, sideLine] : versionsOfTasks(hunk)) {
            piece(baseNext, baseLine, sideNext, sideLine);
            piece(baseLine, baseLine + 1, sideLine, sideLine + 1);
            baseNext = baseLine + 1;
            sideNext = sideLine + 1;
        }
        piece(baseNext, hunk.oldStart + hunk.oldCount, sideNext, hunk.newStart + hunk.newCount);
    }

private:
    struct Tasks {
        std::deque<std::string> texts;
        Lines keys;
        std::vector<std::size_t> places;
    };

    static Tasks tasksIn(std::span<const std::string_view> lines, std::size_t start,
                         std::size_t count) {
        Tasks tasks;
        for (std::size_t i = start; i < start + count; ++i) {
            if (std::optional<std::string> text = taskText(lines[i])) {
                tasks.keys.push_back(tasks.texts.emplace_back(std::move(*text)));
                tasks.places.push_back(i);
            }
        }
        return tasks;
    }

    /// The lines of the base and of the side that are the same task, in order.
    std::vector<std::pair<std::size_t, std::size_t>> versionsOfTasks(const LineHunk& hunk) const {
        const Tasks before = tasksIn(_base, hunk.oldStart, hunk.oldCount);
        const Tasks after = tasksIn(_side, hunk.newStart, hunk.newCount);
        std::vector<std::pair<std::size_t, std::size_t>> pairs;
        std::size_t i = 0;
        std::size_t j = 0;
        const auto pairUpTo = [&](std::size_t end) {
            for (; i < end; ++i, ++j) {
                pairs.emplace_back(before.places[i], after.places[j]);
            }
        };
        for (const LineHunk& differing : diffLines(before.keys, after.keys)) {
            pairUpTo(differing.oldStart);
            i += differing.oldCount;
            j += differing.newCount;
        }
        pairUpTo(before.keys.size());
        return pairs;
    }

    /// As many lines as before are taken for their versions, line by line.
    void piece(std::size_t baseStart, std::size_t baseEnd, std::size_t sideStart,
               std::size_t sideEnd) {
        const bool isPaired = baseEnd - baseStart == sideEnd - sideStart;
        for (std::size_t i = sideStart; i < sideEnd; ++i) {
            const std::size_t place = isPaired ? baseStart + i - sideStart : baseStart;
            _changes.newLines.push_back({_side[i], place, isPaired ? place : none});
        }
    }

    std::span<const std::string_view> _base;
    std::span<const std::string_view> _side;
    Changes& _changes;
};

Changes changesBetween(const Lines& base, const Lines& side) {
    Changes changes;
    changes.isKept.assign(base.size(), true);
    HunkReader reader(base, side, changes);
    for (const LineHunk& hunk : diffLines(base, side)) {
        std::fill_n(changes.isKept.begin() + static_cast<std::ptrdiff_t>(hunk.oldStart),
                    hunk.oldCount, false);
        reader.read(hunk);
    }
    return changes;
}

using NewLines = std::span<const NewLine>;

/// Joins what both sides have between two lines that both kept.
class RegionMerger {
public:
    /// `merged` holds the lines that are in none of the texts.
    RegionMerger(const Lines& base, Lines& out, std::deque<std::string>& merged)
        : _base(base), _out(out), _merged(merged) {}

    void merge(NewLines mine, NewLines theirs) {
        if (mine.empty() || theirs.empty()) {
            both(mine, theirs);
            return;
        }
        Lines myKeys = textsOf(mine);
        Lines theirKeys = textsOf(theirs);
        mergeTasks(mine, theirs, myKeys, theirKeys);
        std::size_t i = 0;
        std::size_t j = 0;
        for (const LineHunk& hunk : symmetricDiff(myKeys, theirKeys)) {
            for (; i < hunk.oldStart; ++i, ++j) {
                once(myKeys[i]);
            }
            both(mine.subspan(i, hunk.oldCount), theirs.subspan(j, hunk.newCount));
            i += hunk.oldCount;
            j += hunk.newCount;
        }
        for (; i < mine.size(); ++i) {
            once(myKeys[i]);
        }
    }

private:
    static Lines textsOf(NewLines lines) {
        Lines texts;
        for (const NewLine& line : lines) {
            texts.push_back(line.text);
        }
        return texts;
    }

    /// Versions of one task that go together get a key in common that no line can be.
    void mergeTasks(NewLines mine, NewLines theirs, Lines& myKeys, Lines& theirKeys) {
        std::size_t j = 0;
        for (std::size_t i = 0; i < mine.size(); ++i) {
            const std::size_t replaced = mine[i].replaced;
            while (replaced != none && j < theirs.size() && !reaches(theirs[j], replaced)) {
                ++j;
            }
            if (replaced == none || j == theirs.size() || theirs[j].replaced != replaced ||
                theirs[j].text == mine[i].text) {
                continue;
            }
            if (const auto line = mergeTaskLine(_base[replaced], mine[i].text, theirs[j].text)) {
                myKeys[i] = theirKeys[j] = _merged.emplace_back('\n' + *line);
            }
        }
    }

    static bool reaches(const NewLine& line, std::size_t replaced) {
        return line.replaced != none && line.replaced >= replaced;
    }

    /// Of several ways to match the lines it is the same one whoever is "mine".
    static std::vector<LineHunk> symmetricDiff(const Lines& mine, const Lines& theirs) {
        if (mine <= theirs) {
            return diffLines(mine, theirs);
        }
        std::vector<LineHunk> hunks = diffLines(theirs, mine);
        for (LineHunk& hunk : hunks) {
            std::swap(hunk.oldStart, hunk.newStart);
            std::swap(hunk.oldCount, hunk.newCount);
        }
        return hunks;
    }

    void once(std::string_view key) { _out.push_back(key.substr(key.starts_with('\n') ? 1 : 0)); }

    /// In the order of the base's lines, mine first.
    void both(NewLines mine, NewLines theirs) {
        std::size_t j = 0;
        for (const NewLine& line : mine) {
            for (; j < theirs.size() && theirs[j].gap < line.gap; ++j) {
                _out.push_back(theirs[j].text);
            }
            _out.push_back(line.text);
        }
        for (; j < theirs.size(); ++j) {
            _out.push_back(theirs[j].text);
        }
    }

    const Lines& _base;
    Lines& _out;
    std::deque<std::string>& _merged;
};

/// The new lines before line `gap` of the base, taken off `rest`.
NewLines takeUpTo(std::size_t gap, NewLines& rest) {
    const auto end = std::find_if(rest.begin(), rest.end(),
                                  [gap](const NewLine& line) { return line.gap > gap; });
    const NewLines taken = rest.first(static_cast<std::size_t>(end - rest.begin()));
    rest = rest.subspan(taken.size());
    return taken;
}

Lines mergeLines(const Lines& base, const Lines& mine, const Lines& theirs,
                 std::deque<std::string>& merged) {
    const Changes myChanges = changesBetween(base, mine);
    const Changes theirChanges = changesBetween(base, theirs);
    NewLines myRest = myChanges.newLines;
    NewLines theirRest = theirChanges.newLines;
    Lines out;
    RegionMerger region(base, out, merged);
    for (std::size_t i = 0; i < base.size(); ++i) {
        if (myChanges.isKept[i] && theirChanges.isKept[i]) {
            region.merge(takeUpTo(i, myRest), takeUpTo(i, theirRest));
            out.push_back(base[i]);
        }
    }
    region.merge(myRest, theirRest);
    return out;
}

/// Whether the result's last line ends in a break: who changed that decides. But a line that one
/// side has last, with its break, keeps it. An empty line is its break, a text without lines has no
/// say.
bool endsInBreak(const Text& base, const Text& mine, const Text& theirs, const Lines& merged) {
    if (merged.back().empty()) {
        return true;
    }
    if (mine.endsInBreak == theirs.endsInBreak || mine.lines.empty() || theirs.lines.empty()) {
        return mine.endsInBreak || theirs.endsInBreak;
    }
    const Text& with = mine.endsInBreak ? mine : theirs;
    const Text& without = mine.endsInBreak ? theirs : mine;
    return !base.endsInBreak || (with.endsWith(merged.back()) && !without.endsWith(merged.back()));
}

}  // namespace

std::string threeWayMerge(std::string_view base, std::string_view mine, std::string_view theirs) {
    const Text baseText(base);
    const Text myText(mine);
    const Text theirText(theirs);
    std::deque<std::string> mergedTasks;
    const Lines lines = mergeLines(baseText.lines, myText.lines, theirText.lines, mergedTasks);
    std::string text;
    text.reserve(mine.size() + theirs.size());
    for (const std::string_view line : lines) {
        text.append(line).append(1, '\n');
    }
    if (!text.empty() && !endsInBreak(baseText, myText, theirText, lines)) {
        text.pop_back();
    }
    return text;
}

}  // namespace tessaly::store
