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

/// A word of a query that looks like an operator and is none, and why.
struct MisreadWord {
    enum class Reason { noState, noDay, nothingNamed, openQuote };
    Reason reason = Reason::noState;
    std::string word;

    bool operator==(const MisreadWord&) const = default;
};

/// What a query asks of a note's lines. All texts are folded; all conditions hold at once.
///
/// Operators are words of their own, separated by white space: `"phrase"`, `-word`, `-"phrase"`,
/// `is:open` (`done`, `scheduled`, `cancelled` or `canceled`, `task`; several: any of them),
/// `in:folder`, `on:day`, `before:day`, `after:day`, `title:text`; what follows a colon may stand
/// in quotes, which may hold white space, but no quote. Their names may be in any case. What looks
/// like one and is not (`is:red`, `on:nix`, a quote that is not closed, a lone `-`, `--all`) is
/// text as any other, and so is what follows the first `mostOperators`.
struct SearchQuery {
    /// More words than these are looked for as a whole text only.
    static constexpr std::size_t mostWords = 64;
    static constexpr std::size_t mostOperators = 64;

    std::string text;                   ///< looked for as a whole; empty: any line
    std::vector<std::string> words;     ///< of `text`, where it has several (each once)
    std::vector<std::string> phrases;   ///< all of which a line holds
    std::vector<std::string> excluded;  ///< none of which a line holds
    std::vector<std::string> titles;    ///< all of which the note's title holds
    /// In one of which the note lies, without slashes at their ends; see `isInFolder`.
    std::vector<std::string> folders;
    LineKinds kinds = LineKinds::all();
    DayRange days;  ///< of several operators those that all of them name, perhaps none
    std::vector<MisreadWord> misread;  ///< for explanations: these words are part of `text`

    /// Nothing is asked of lines, only of notes: each gives its own row alone.
    bool isAboutNotesOnly() const {
        return text.empty() && phrases.empty() && excluded.empty() && days.isOpen() &&
               kinds == LineKinds::all();
    }
    /// `on:day` and nothing else: the agenda of that day.
    std::optional<base::Day> agendaDay() const;
};

/// A query without operators is its text, whole and trimmed, with the white space within it as it
/// is; beside operators, the other words are the text, with a blank between them. Linear in the
/// query, whatever it holds. `parseDay` may be empty: then no operator of days is known.
SearchQuery readQuery(std::string_view query, const ParseDay& parseDay);

/// What a query is before it is read: step by step as the search request takes it apart.
enum class SearchRoute { tags, defaultList, text };
struct RoutedQuery {
    SearchRoute route = SearchRoute::text;
    /// Folded and trimmed. `tags`: the token with its sign; `defaultList`: the list's name,
    /// "recent" for an empty query; `text`: the query, with its "//" if it has one.
    std::string query;
};
RoutedQuery routeQuery(std::string_view query, bool hasFilter);

/// Whether the folded name of a note's folder ("calendar", "notes/work/plans") is `folder` or lies
/// below it; `folder`, folded too, is relative to "Notes" or to the data folder.
bool isInFolder(std::string_view notesFolder, std::string_view folder);

/// One thing that a query asks for, in words for the user: "with the text “call bob”".
/// In the order of the query's members; for `--explain` and the window's hint.
std::vector<std::string> explainQuery(const SearchQuery& query);
/// The part of it that tells of words that look like operators and are none.
std::vector<std::string> explainMisread(const SearchQuery& query);
/// Nothing for a text, which `explainQuery` explains.
std::vector<std::string> explainRoute(const RoutedQuery& routed);

}  // namespace tessaly::search
