// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "search/day_range.h"
#include "search/line_kinds.h"

namespace tessaly::search {

/// Reads a day as users write it ("today", "fri", "+3d", "2019-03-05"); nothing for other text.
using ParseDay = std::function<std::optional<base::Day>(std::string_view text)>;

/// What a query asks of a note's lines. All texts are folded; all conditions hold at once.
///
/// Operators are words of their own, separated by white space: `"phrase"`, `-word`, `-"phrase"`,
/// `is:open` (`done`, `scheduled`, `cancelled` or `canceled`, `task`; several: any of them),
/// `in:folder`, `on:day`, `before:day`, `after:day`, `title:text`; what follows a colon may stand in
/// quotes. Their names may be in any case. What looks like one and is not (`is:red`, `on:nix`, a
/// quote that is not closed, a lone `-`) is text as any other.
struct SearchQuery {
    /// More words than these are looked for as a whole text only.
    static constexpr std::size_t mostWords = 64;

    std::string text;                  ///< looked for as a whole; empty: any line
    std::vector<std::string> words;    ///< of `text`, where it has several (each once)
    std::vector<std::string> phrases;  ///< all of which a line holds
    std::vector<std::string> excluded;  ///< none of which a line holds
    std::vector<std::string> titles;   ///< all of which the note's title holds
    std::vector<std::string> folders;  ///< in one of which the note lies; see `isInFolder`
    LineKinds kinds = LineKinds::all();
    DayRange days;

    /// Nothing is asked of lines, only of notes: each gives its own row alone.
    bool isAboutNotesOnly() const {
        return text.empty() && phrases.empty() && excluded.empty() && days.isOpen() &&
               kinds == LineKinds::all();
    }
    /// `on:day` and nothing else: the agenda of that day.
    std::optional<base::Day> agendaDay() const;
};

/// A query without a filter and operators is its text, whole. `parseDay` may be empty: then no
/// operator of days is known.
SearchQuery readQuery(std::string_view query, const ParseDay& parseDay);

/// What a query is before it is read: step by step as the search request takes it apart.
enum class SearchRoute { tags, defaultList, text };
struct RoutedQuery {
    SearchRoute route = SearchRoute::text;
    /// In lower case and trimmed. `tags`: the token with its sign; `defaultList`: the list's name,
    /// "recent" for an empty query; `text`: the query, with its "//" if it has one.
    std::string query;
};
RoutedQuery routeQuery(std::string_view query, bool hasFilter);

/// Whether the folded name of a note's folder ("Calendar", "Notes/work/plans") is `folder` or below:
/// `folder` is relative to "Notes" or to the data folder.
bool isInFolder(std::string_view notesFolder, std::string_view folder);

/// One thing that a query asks for, in words for the user: "with the text “call bob”".
/// In the order of the query's members; for `--explain` and the window's hint.
std::vector<std::string> explainQuery(const SearchQuery& query);
std::vector<std::string> explainRoute(const RoutedQuery& routed);

}  // namespace tessaly::search
