// SPDX-License-Identifier: MIT
#include "search/found_rows.h"

namespace tessaly::search {

FoundRows::FoundRows(Kind kind, const ResultRows& empty) : _rows(empty) {
    if (kind == Kind::tag) {
        _texts.emplace(empty);
    }
}

ResultRows* FoundRows::rowsFor(NoteMatches& matches) {
    if (matches.rows > 0) {
        _texts.reset();
        if (matches.textRows > 0) {
            matches.dropTextRows();
        }
        return &_rows;
    }
    if (_texts && matches.textRows > 0) {
        matches.takeTextRows();
        return &*_texts;
    }
    return nullptr;
}

void FoundRows::add(const SearchedNote& note, NoteMatches matches) {
    if (ResultRows* rows = rowsFor(matches)) {
        rows->addNote(note, matches);
    }
}

void FoundRows::count(NoteMatches matches) {
    if (ResultRows* rows = rowsFor(matches)) {
        rows->count(matches);
    }
}

}  // namespace tessaly::search
