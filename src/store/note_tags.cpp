// SPDX-License-Identifier: MIT
#include "store/note_tags.h"

namespace tessaly::store {

using grammar::MarkKind;

void NoteTags::add(const grammar::ScannedLine& line) {
    for (const grammar::Mark& mark : line.marks) {
        if (mark.kind == MarkKind::hashtag) {
            hashTags.add(markText(line, mark));
        } else if (mark.kind == MarkKind::mention) {
            atTags.add(markText(line, mark));
        }
    }
}

std::optional<base::Day> dayOfMark(const grammar::ScannedLine& line, const grammar::Mark& mark) {
    if (mark.kind == MarkKind::hashtag || mark.kind == MarkKind::mention) {
        return std::nullopt;
    }
    // Only white space, a sign and "done(" can stand before the date.
    const std::string_view text = markText(line, mark);
    const std::size_t date = text.find_first_of("0123456789");
    return date == text.npos ? std::nullopt : base::dayFromTagText(text.substr(date, 10));
}

}  // namespace tessaly::store
