// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "store/line_diff.h"

namespace tessaly::tests {

using Counts = std::map<std::string, int>;

/// How often each line occurs; the tags of a task may stand in any order.
inline Counts lineCounts(std::string_view text) {
    Counts counts;
    std::vector<std::string_view> lines = store::linesOfText(text);
    if (lines.back().empty()) {
        lines.pop_back();
    }
    for (const std::string_view line : lines) {
        std::string sorted(line);
        if (line.starts_with("* ")) {
            std::sort(sorted.begin(), sorted.end());
        }
        ++counts[sorted];
    }
    return counts;
}

class Random {
public:
    explicit Random(unsigned seed) : _engine(seed) {}

    std::size_t below(std::size_t end) { return _engine() % end; }
    std::string oneOf(const std::vector<std::string>& choices) {
        return choices[below(choices.size())];
    }
    std::string text(const std::vector<std::string>& alphabet) {
        std::string text;
        for (std::size_t left = below(9); left > 0; --left) {
            text += oneOf(alphabet) + (left == 1 && below(2) == 0 ? "" : "\n");
        }
        return text;
    }

private:
    std::mt19937 _engine;
};

/// Every line that a side has more often than the base is in the result at least as much more
/// often than nowhere.
inline void requireNoLineLost(const Counts& base, const Counts& side, const Counts& result) {
    for (const auto& [line, count] : side) {
        const auto before = base.find(line);
        const auto after = result.find(line);
        REQUIRE((after == result.end() ? 0 : after->second) >=
                count - (before == base.end() ? 0 : before->second));
    }
}

}  // namespace tessaly::tests
