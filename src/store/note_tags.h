// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/day.h"
#include "grammar/line_scanner.h"
#include "grammar/tags.h"

namespace tessaly::store {

/// The hashtags and mentions of a note, gathered line by line.
struct NoteTags {
    grammar::TagList hashTags;
    grammar::TagList atTags;

    void add(const grammar::ScannedLine& line);
};

/// The text of a mark, as it stands in its line.
inline std::string_view markText(const grammar::ScannedLine& line, const grammar::Mark& mark) {
    return line.text.substr(mark.start, mark.end - mark.start);
}

/// The day that a date or completion tag names; nothing for one that does not exist (2019-02-31)
/// and for other marks.
std::optional<base::Day> dayOfMark(const grammar::ScannedLine& line, const grammar::Mark& mark);

}  // namespace tessaly::store
