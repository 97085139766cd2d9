// SPDX-License-Identifier: MIT
#include "search/note_matches.h"

#include <utility>

namespace tessaly::search {

void NoteMatches::dropTextRows() {
    std::erase_if(lines, [](const LineMatch& line) { return line.rank != 0; });
    if (noteLine && noteLine->rank != 0) {
        noteLine.reset();
        hasNoteRow = false;
    }
    textRows = 0;
    textTaskRows = 0;
}

void NoteMatches::takeTextRows() {
    rows += std::exchange(textRows, 0);
    taskRows += std::exchange(textTaskRows, 0);
}

void NoteMatches::clear() {
    std::vector<LineMatch> kept = std::move(lines);
    kept.clear();
    *this = {};
    lines = std::move(kept);
}

}  // namespace tessaly::search
