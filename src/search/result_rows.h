// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/cached_calendar_item.h"
#include "grammar/date_string_helper.h"
#include "search/note_matcher.h"
#include "search/search_results.h"
#include "store/note_model.h"

namespace tessaly::search {

/// Makes rows of matches, group by group, in the order in which they are added.
class ResultRows {
public:
    enum class Objects { made, left };
    struct Options {
        std::size_t most = 0;  ///< rows, sections not counted; 0: all
        Objects objects = Objects::made;
        store::CountSettings counting = {};  ///< for the objects of notes
    };

    /// `names` outlives this object.
    ResultRows(const grammar::DateStringHelper& names, base::Day today, Options options);

    bool isFull() const;

    /// A note's group: its section, its own row, its lines. Rows beyond `most` are counted only.
    void addNote(const SearchedNote& note, const NoteMatches& matches);
    /// Of notes without any matches looked at: their rows are counted.
    void count(const NoteMatches& matches);

    /// An event or reminder that occurs on `day`, below the section of its day; to be added by
    /// kind, day and time.
    void addItem(const calendar::CachedCalendarItem& item, base::Day day,
                 Stretch matchInFoldedTitle);

    /// One section for rows of several notes, as lists have it: the notes' rows that follow until
    /// the next group are in it.
    void beginList(std::string heading);
    void addListedNote(const SearchedNote& note);

    /// The rows so far; with a `loading` row at the end while more may come. Positions are set.
    SearchResults results(bool isFinal) const;

private:
    struct Group;
    const grammar::DateStringHelper& _names;
    base::Day _today;
    Options _options;
    SearchResults _results;
};

/// The part of `line` (one line of a note, not folded) that a row shows around a match, up to 60
/// user-perceived characters, and where the match lies in it.
struct Excerpt {
    std::string text;
    base::TextRange highlight;
};
/// `match` in bytes of `line`. A line that is cut begins or ends with "…", which counts.
Excerpt excerptOf(std::string_view line, Stretch match);

}  // namespace tessaly::search
