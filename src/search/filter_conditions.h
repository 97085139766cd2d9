// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/weekday.h"
#include "search/day_range.h"
#include "search/filter_item.h"
#include "search/line_kinds.h"

namespace tessaly::search {

/// The days of a timeframe. Weeks begin on `firstDayOfWeek`; `past` ends before today, `future`
/// begins after it; `custom` is open.
DayRange daysOf(FilterTimeframe timeframe, base::Day today, base::DayOfWeek firstDayOfWeek);

/// What a filter lets pass. Without a filter: everything.
struct FilterConditions {
    bool isActive = false;
    /// Lines that become rows of their own. With `hasOther`, a line without a state is one; else
    /// such lines give their note's row.
    LineKinds kinds = LineKinds::tasks();
    bool noteItem = true;
    bool calendarItem = true;
    bool eventItem = true;
    bool reminderItem = true;
    DayRange days;
    std::string keyword;  ///< one more query, as typed; a single tag is one, too
    /// What cannot be read and is therefore passed over, in words for the user, one thing each.
    std::vector<std::string> unreadable;
};

/// A filter that names neither a state nor a kind (only days or a keyword) lets all of them pass,
/// lines without a state as part of their note's row. A timeframe or bound that is empty is open,
/// and so is one that cannot be read; the latter is told of.
FilterConditions conditionsOf(const Filter& filter, base::Day today,
                              base::DayOfWeek firstDayOfWeek);

/// In words for the user, one thing each; what cannot be read last.
std::vector<std::string> explainFilter(const FilterConditions& conditions);

}  // namespace tessaly::search
