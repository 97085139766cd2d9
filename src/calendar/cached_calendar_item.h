// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/day.h"
#include "ports/calendar_item.h"

namespace tessaly::calendar {

/// An event or a reminder as it was when it was fetched.
struct CachedCalendarItem {
    std::string identifier;
    std::optional<base::Instant> modifiedDate;
    std::vector<base::Day> occuranceDates;  ///< the days on which it occurs, in order
    ports::CalendarItem calendarItem;
    std::string title;

    bool operator==(const CachedCalendarItem&) const = default;
};

}  // namespace tessaly::calendar
