// SPDX-License-Identifier: MIT
#pragma once

#include <utility>
#include <vector>

#include "grammar/patterns.h"
#include "readers.h"

namespace tessaly::bench {

/// Reads line by line with an engine for regular expressions. `Pattern` is one of its compiled
/// patterns: `opens` a line, or is found `count` times in it.
template <class Pattern, class Line>
class PatternReader : public Reader {
public:
    explicit PatternReader(std::vector<Line> lines) : _lines(std::move(lines)) {}

    Counts read() override {
        Counts counts;
        for (const Line& line : _lines) {
            if (_taskOrList.opens(line)) {
                ++counts.tasksAndLists;
            } else {
                counts.headingsAndQuotes += _headingOrQuote.opens(line);
            }
            counts.hashtags += _hashtag.count(line);
            counts.mentions += _mention.count(line);
            counts.dates += _dateTag.count(line);
            counts.doneTags += _doneTag.count(line);
        }
        return counts;
    }

private:
    std::vector<Line> _lines;
    Pattern _taskOrList{grammar::patterns::taskOrList};
    Pattern _headingOrQuote{grammar::patterns::headingOrQuote};
    Pattern _hashtag{grammar::patterns::hashtag};
    Pattern _mention{grammar::patterns::mention};
    Pattern _dateTag{grammar::patterns::dateTag};
    Pattern _doneTag{grammar::patterns::doneTag};
};

}  // namespace tessaly::bench
