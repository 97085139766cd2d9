// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "search/filter_conditions.h"
#include "search/line_test.h"
#include "search/note_matches.h"
#include "search/note_walk.h"
#include "search/search_query.h"
#include "search/searched_note.h"

namespace tessaly::search {

/// A query and a filter, ready to be asked of notes. A value that does not change; any thread.
///
/// - A task's line that matches is a row, when the queries and the filter want its state.
/// - Other lines give their note's row, or, where the filter wants lines without a state, are rows
///   themselves; the line of a general note's title is never one.
/// - A query without text matches every line that is not blank; without a filter, one that asks of
///   notes only gives but their rows.
/// - A title matches as a line does, that of a note without lines, too; a tag is not looked for
/// there.
/// - The day of a task is its first schedule tag's, else its calendar note's; of other lines and of
///   notes the calendar note's, else that of the last change. What has none is in no bounded range.
class NoteMatcher {
public:
    /// All queries hold (the second is the filter's keyword); the first that has a text gives ranks
    /// and the highlight; where none has, the first phrase gives the highlight.
    NoteMatcher(const std::vector<SearchQuery>& queries, FilterConditions filter);

    /// Lines that carry all of some tags or mentions (`tokens` with their signs, folded), each
    /// itself, with one below it ("#a/b" for "#a") or with an argument. Lines in which the tokens
    /// merely occur are `textRows`. The queries hold beside them.
    static NoteMatcher forTags(const std::vector<std::string>& tokens, FilterConditions filter,
                               const std::vector<SearchQuery>& queries = {},
                               LineTest::Shown shown = LineTest::Shown::tag);

    using Collect = search::Collect;
    /// With `counts`, `lines` and `noteLine` stay empty, and no memory is asked for. `matches` is
    /// emptied first; giving the same again saves allocations.
    /// Of more than `mostLines` of one rank the others are counted: a list shows no more.
    void match(const SearchedNote& note, Collect collect, NoteMatches& matches,
               std::size_t mostLines = everyLine) const;

    /// Whether a note has rows if and only if its candidate stands in one of its lines or its
    /// title.
    bool isPlain() const;

    /// What each line and title that matches holds; empty: there is no such text. For who must do
    /// much to make a `SearchedNote`, and asks for this first.
    const Needle& candidate() const { return _test.candidate(); }

    /// Whether the title of an event or reminder matches; days are not asked here. Where: in the
    /// folded title; empty: all of it.
    std::optional<Stretch> matchTitle(std::string_view foldedTitle) const;

    const DayRange& days() const { return _days; }
    const FilterConditions& filter() const { return _filter; }

private:
    NoteMatcher(const std::vector<SearchQuery>& queries, FilterConditions filter, LineTest test);

    bool isAskedOf(const SearchedNote& note) const;
    NoteWalk::Others othersOf(const SearchedNote& note) const;

    LineTest _test;
    FilterConditions _filter;
    std::vector<Needle> _titles;
    std::vector<std::vector<std::string>> _folders;  // in one of each
    LineKinds _kinds = LineKinds::all();             // of the queries
    DayRange _days;                                  // of the queries and the filter
    bool _isAboutNotesOnly = false;
};

}  // namespace tessaly::search
