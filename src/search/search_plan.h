// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/day.h"
#include "base/weekday.h"
#include "search/default_list.h"
#include "search/filter_item.h"
#include "search/note_matcher.h"
#include "search/search_query.h"

namespace tessaly::search {

/// What a request comes to: a list that has a name, or something to ask of every note.
struct SearchPlan {
    SearchRoute route = SearchRoute::text;
    DefaultList list = DefaultList::none;  ///< of `SearchRoute::defaultList`
    std::optional<NoteMatcher> matcher;    ///< of the other routes
    std::optional<base::Day> agendaDate;   ///< the query asks for one day and nothing else
};

/// The query and the filter's keyword must both hold, and are read alike: one that is a single tag
/// or mention makes it a tag search, which the other holds beside. Two tags are both carried by a
/// line; where no line of any note does, lines that hold both as text are found, as for one. What
/// is shown as the match is the query's, unless it has no text.
SearchPlan planSearch(std::string_view query, const Filter& filter, base::Day today,
                      base::DayOfWeek firstDayOfWeek, const ParseDay& parseDay);

}  // namespace tessaly::search
