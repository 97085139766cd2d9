// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/day.h"
#include "calendar/cached_calendar_item.h"
#include "grammar/date_string_helper.h"
#include "grammar/line_scanner.h"
#include "search/note_matcher.h"
#include "search/search_results.h"
#include "store/note_model.h"

namespace tessaly::search {

class NoteLines;

/// Makes rows of matches, group by group, in the order in which they are added. What it is given is
/// copied. One thread at a time.
class ResultRows {
public:
    enum class Objects { made, left };
    struct Options {
        std::size_t most = 0;  ///< rows, sections not counted; 0: all
        Objects objects = Objects::made;
        store::CountSettings counting = {};  ///< its markers read lines; the rest: objects of notes
        std::optional<base::Day> agendaDate = {};  ///< of the results
    };

    /// `names` outlives this object.
    ResultRows(const grammar::DateStringHelper& names, base::Day today, Options options);

    /// No more rows are shown: what is still added is counted alone, so `Collect::counts` will do.
    bool isFull() const;

    /// A note's group: its section, its own row, its lines. Rows beyond `most` are counted only.
    /// Nothing for a note without rows. Of a tag's matches only those of one kind may be left
    /// (`dropTextRows`, `takeTextRows`).
    void addNote(const SearchedNote& note, const NoteMatches& matches);
    /// Whether rows of these matches show something of the note beside the lines that matched.
    /// Where they do not, and objects are left, no other line of the note is looked at.
    static bool needWholeText(const NoteMatches& matches);
    /// Of notes without any matches looked at: their rows are counted.
    void count(const NoteMatches& matches);

    /// An event or reminder that occurs on `day`, below the section of its kind and day; to be
    /// added by kind, day and time.
    void addItem(const calendar::CachedCalendarItem& item, base::Day day,
                 Stretch matchInFoldedTitle);

    /// One section for rows of several notes, as lists have it: the notes' rows that follow until
    /// the next group are in it. Without any, the section is not shown.
    void beginList(std::string heading);
    void addListedNote(const SearchedNote& note);

    /// The rows so far; with a `loading` row at the end while more may come. Positions are set.
    SearchResults results(bool isFinal) const;
    /// The rows, all of them final, without a copy; none are left.
    SearchResults take();

private:
    void beginGroup(SearchResultItem section);
    void add(SearchResultItem row);
    void addNoteRow(const SearchedNote& note, std::string_view line, Stretch match,
                    std::optional<std::size_t> lineIndex);
    void addMatchedNote(const SearchedNote& note, const std::optional<LineMatch>& match,
                        NoteLines& lines);
    void addLine(const SearchedNote& note, const LineMatch& match, NoteLines& lines);

    const grammar::DateStringHelper& _names;
    const base::Day _today;
    const Options _options;
    SearchResults _results;
    std::optional<SearchResultItem> _section;  // of the group in hand, until that has a row
    std::size_t _groupStart = 0;               // the place of that section
    std::size_t _shown = 0;                    // rows, sections not counted
    std::optional<std::pair<SearchResultType, base::Day>> _items;  // which the group holds, if any
    grammar::NoteScanner _scanner;
};

}  // namespace tessaly::search
