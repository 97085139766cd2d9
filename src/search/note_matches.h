// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "grammar/todo.h"
#include "search/folded_text.h"

namespace tessaly::search {

/// A line that matched.
struct LineMatch {
    std::size_t lineIndex = 0;  ///< from 0
    Stretch line;               ///< in the folded text, without "\n", with a "\r" before it
    Stretch match;  ///< in the folded text; empty at the line's start: all of it matches
    grammar::TodoType type = grammar::TodoType::text;  ///< of other than tasks not known: `text`
    /// 0: the whole text stands there (or the tag); 1: its words do, apart.
    std::uint8_t rank = 0;
};

/// The rows that a note gives.
struct NoteMatches {
    std::vector<LineMatch> lines;  ///< each a row; by rank, then by line
    /// The note has a row of its own, for its title or lines that are no rows themselves: the best
    /// of these by rank, then by line, or, when only the title matched, nothing.
    bool hasNoteRow = false;
    std::optional<LineMatch> noteLine;
    std::size_t rows = 0;      ///< of all ranks; also when nothing is collected
    std::size_t taskRows = 0;  ///< of these, those of lines, with a state or without
    /// A tag search: rows of lines that hold the token as part of a longer word only. They count
    /// (and are kept, with rank 1) beside `rows`, for when no note at all has others.
    std::size_t textRows = 0;
    std::size_t textTaskRows = 0;

    /// A tag search has found the tag, here or in another note: what was kept with rank 1 goes.
    void dropTextRows();
    /// It has found it nowhere: these are the rows.
    void takeTextRows();

    /// Empties it, but keeps its memory.
    void clear();
};

}  // namespace tessaly::search
