// SPDX-License-Identifier: MIT
#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "store/line_diff.h"

using namespace tessaly;
using store::LineHunk;
using Lines = std::vector<std::string_view>;

namespace {

/// Empty when the hunks lead from one text to the other, in order and with equal lines between.
std::string faultOf(const std::vector<LineHunk>& hunks, const Lines& from, const Lines& to) {
    std::size_t i = 0;
    std::size_t j = 0;
    for (const LineHunk& hunk : hunks) {
        if (hunk.oldStart < i || hunk.oldStart - i != hunk.newStart - j ||
            hunk.oldStart + hunk.oldCount > from.size() ||
            hunk.newStart + hunk.newCount > to.size()) {
            return "places do not fit";
        }
        if (i != 0 && hunk.oldStart == i) {
            return "hunks touch";
        }
        for (; i < hunk.oldStart; ++i, ++j) {
            if (from[i] != to[j]) {
                return "lines between hunks differ";
            }
        }
        i += hunk.oldCount;
        j += hunk.newCount;
    }
    return std::equal(from.begin() + static_cast<long>(i), from.end(),
                      to.begin() + static_cast<long>(j), to.end())
               ? ""
               : "ends differ";
}

std::size_t changedLines(const std::vector<LineHunk>& hunks) {
    std::size_t count = 0;
    for (const LineHunk& hunk : hunks) {
        count += hunk.oldCount + hunk.newCount;
    }
    return count;
}

/// The fewest lines that must change, by the textbook's table.
std::size_t fewestChanges(const Lines& from, const Lines& to) {
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t best = from[i] == to[j] ? diagonal : std::min(row[j], row[j + 1]) + 1;
            diagonal = std::exchange(row[j + 1], best);
        }
    }
    return row.back();
}

void check(std::string_view from, std::string_view to, const std::vector<LineHunk>& expected) {
    CAPTURE(from);
    CAPTURE(to);
    CHECK(store::diffLines(store::linesOfText(from), store::linesOfText(to)) == expected);
}

}  // namespace

TEST_CASE("what changed between two texts") {
    check("", "", {});
    check("a\nb\nc", "a\nb\nc", {});
    check("a\nb", "a\nb\n", {{2, 0, 2, 1}});
    check("", "a", {{0, 1, 0, 1}});
    check("a\nb\nc", "a\nX\nc", {{1, 1, 1, 1}});
    check("a\nb\nc\nd", "a\nc\nd\ne", {{1, 1, 1, 0}, {4, 0, 3, 1}});
    check("a\r\nb", "a\nb", {{0, 1, 0, 1}});
    // A line that occurs once is held on to, rather than more lines that are everywhere.
    check("# A\n-\n-", "-\n-\n# A", {{0, 0, 0, 2}, {1, 2, 3, 0}});
}

TEST_CASE("hunks lead from any text to any other, in about the fewest changed lines") {
    std::mt19937 random(20190521);
    std::size_t changed = 0;
    std::size_t fewest = 0;
    for (int round = 0; round < 4000; ++round) {
        const auto letters = 1 + random() % 5;
        Lines texts[2];
        const std::string_view alphabet = "abcdefg";
        for (Lines& text : texts) {
            for (auto left = random() % 14; left > 0; --left) {
                text.push_back(alphabet.substr(random() % letters, 1));
            }
        }
        const auto hunks = store::diffLines(texts[0], texts[1]);
        REQUIRE(faultOf(hunks, texts[0], texts[1]) == "");
        changed += changedLines(hunks);
        fewest += fewestChanges(texts[0], texts[1]);
    }
    CHECK(changed >= fewest);
    CHECK(changed <= fewest + fewest / 50);
}

TEST_CASE("large texts that have little or nothing in common still have an answer") {
    constexpr int size = 30'000;
    std::string numbers;
    std::string shuffled;
    std::string blanks;
    std::mt19937 random(7);
    for (int i = 0; i < size; ++i) {
        numbers += std::to_string(i) + '\n';
        shuffled += std::to_string(random() % size) + '\n';
        blanks += random() % 2 == 0 ? "\n" : "-\n";
    }
    std::string otherBlanks = blanks.substr(size / 2) + blanks.substr(0, size / 3);
    for (const auto& [from, to] : {std::pair(numbers, blanks), std::pair(numbers, shuffled),
                                   std::pair(blanks, otherBlanks), std::pair(shuffled, numbers)}) {
        const Lines fromLines = store::linesOfText(from);
        const Lines toLines = store::linesOfText(to);
        CHECK(faultOf(store::diffLines(fromLines, toLines), fromLines, toLines) == "");
    }
}
