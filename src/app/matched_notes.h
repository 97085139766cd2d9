// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "base/sort_type.h"
#include "grammar/date_string_helper.h"
#include "search/note_matcher.h"
#include "search/note_order.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// How much of a note's text must be kept when its file's bytes go: most rows are made of the lines
/// that matched, the records behind rows of all lines.
enum class KeptText { matches, whole };

/// A note with matches, on its own.
struct MatchedNote {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to its kind's folder
    std::string title;
    std::string foldedTitle;
    std::string foldedFolder;
    std::optional<base::Day> day;
    base::Day changedDay{};
    base::Instant modified{};
    base::Instant created{};
    /// Either all of the text, or the lines that matched, one after the other; `matches` tells
    /// where.
    std::string text;
    /// Empty where the matches lie in `text` itself.
    std::string foldedCopy;
    search::NoteMatches matches;

    search::SearchedNote view() const;
    search::NoteSortKey sortKey() const { return {foldedTitle, modified, created}; }
};

/// Gives a note, once its matches are known, what is kept of the texts in which they lie.
void keepText(MatchedNote& note, const search::SearchedNote& searched, KeptText kept);

/// Makes notes of files that are read.
class NoteNames {
public:
    /// `names` outlives it. Days are named relative to `today`.
    NoteNames(const grammar::DateStringHelper& names, base::Day today)
        : _names(names), _today(today) {}

    /// What the note is called, its text left out of account: its day's name, else its file's.
    std::string nameOf(const store::NoteFile& file, std::optional<base::Day> day) const;
    /// The note without text, matches and the day of its change; `name` is as `nameOf` has it.
    MatchedNote noteOf(const store::NoteFile& file, std::optional<base::Day> day, std::string name,
                       std::string_view text) const;

private:
    const grammar::DateStringHelper& _names;
    const base::Day _today;
};

/// The day of a calendar note. A file in the calendar's folder that is of no day is no note.
struct NoteDay {
    std::optional<base::Day> day;
    bool isNote = true;
};
NoteDay noteDayOf(const store::NoteFile& file);

/// In the order of `sortBy`; what that leaves open: general notes by file name, then days.
void sortNotes(std::vector<const MatchedNote*>& notes, base::SortType sortBy);

}  // namespace tessaly::app
