// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "search/note_matches.h"
#include "search/result_rows.h"
#include "search/searched_note.h"

namespace tessaly::search {

/// The rows of the notes that a search has found, in the order in which they are added. Those of a
/// tag search are lines that carry the tag; when no note at all has one, the lines in which its
/// text occurs. One thread at a time.
class FoundRows {
public:
    enum class Kind { text, tag };

    /// `empty` makes the rows.
    FoundRows(Kind kind, const ResultRows& empty);

    void add(const SearchedNote& note, NoteMatches matches);
    /// Of notes whose rows would not be shown.
    void count(NoteMatches matches);

    /// What is still added is counted alone.
    bool isFull() const { return _rows.isFull(); }
    /// Whether `rows` are those that a list begins with, whatever is found from now on.
    bool areSure() const { return !_texts; }

    ResultRows& rows() { return _texts ? *_texts : _rows; }

private:
    /// Null: these matches are no rows. Else only those that are stay.
    ResultRows* rowsFor(NoteMatches& matches);

    ResultRows _rows;
    std::optional<ResultRows> _texts;  ///< of a tag search, until a line has the tag
};

}  // namespace tessaly::search
