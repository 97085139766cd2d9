// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "base/sort_type.h"
#include "grammar/todo.h"
#include "search/filter_conditions.h"
#include "search/search_query.h"

namespace tessaly::tests {

/// A search as simple as can be: each line of each note by itself, as an ICU string. It shares
/// nothing with what it is to be compared with but the records of queries and filters.

/// A note, with what a search asks of it beside its text.
struct PlainNote {
    base::NoteType type = base::NoteType::note;
    std::string filename;               ///< relative to its kind's folder
    std::string title;                  ///< as lists show it
    std::string text;                   ///< without a byte-order mark
    std::optional<base::Day> day = {};  ///< of a calendar note
    base::Day changedDay{};
    base::Instant modified{};
    base::Instant created{};
};

/// What is looked for. The texts of queries may be in any case and form.
struct Asked {
    std::vector<search::SearchQuery> queries = {};  ///< all of which hold
    search::FilterConditions filter = {};
    std::string tag = {};  ///< with its sign; empty: no tag search
    grammar::MarkerSettings markers = {};
};

struct FoundLine {
    std::size_t lineIndex = 0;
    int rank = 0;
    grammar::TodoType type = grammar::TodoType::text;

    bool operator==(const FoundLine&) const = default;
};

/// What one note gives. In a tag search rows of rank 1 count only where no note has others.
struct FoundRows {
    std::vector<FoundLine> lines;  ///< by rank, then by line
    bool hasNoteRow = false;
    std::optional<FoundLine> noteLine;  ///< best of the lines that the note's row stands for

    bool operator==(const FoundRows&) const = default;
};

FoundRows searchByForce(const PlainNote& note, const Asked& asked);

/// One row of a whole list.
struct ForcedRow {
    base::NoteType noteType = base::NoteType::none;
    std::string filename;
    std::optional<FoundLine> line;  ///< nothing: the note's own row

    bool operator==(const ForcedRow&) const = default;
};

/// The rows of all notes in display order, without sections, events and reminders. `notes` is in
/// the order in which equals stay: general notes by filename, then calendar notes by day.
std::vector<ForcedRow> searchAllByForce(const std::vector<PlainNote>& notes, const Asked& asked,
                                        base::SortType sortBy);

/// The folded form of a text, as lower case that is composed, by ICU's string functions.
std::string foldedByForce(std::string_view text);

/// For messages: a note or a query in one line, with what cannot be seen escaped.
std::string shown(const PlainNote& note);
std::string shown(const Asked& asked);

}  // namespace tessaly::tests
