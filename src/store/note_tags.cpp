// SPDX-License-Identifier: MIT
#include "store/note_tags.h"

#include "grammar/date_tags.h"

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
    switch (mark.kind) {
        case MarkKind::hashtag:
        case MarkKind::mention: return std::nullopt;
        case MarkKind::doneTag: return grammar::DateTags::readDoneTag(markText(line, mark)).day;
        default: return grammar::DateTags::dayOf(markText(line, mark));
    }
}

}  // namespace tessaly::store
