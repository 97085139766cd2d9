// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "base/day.h"

namespace tessaly::ports {

/// An event or a reminder of the system's calendars, as far as lists show it.
struct CalendarItem {
    enum class Kind { event, reminder };
    Kind kind = Kind::event;
    std::optional<base::LocalTime> start;  ///< of a reminder: when it is due
    bool isAllDay = false;
    bool isCompleted = false;  ///< a reminder that is done

    bool operator==(const CalendarItem&) const = default;
};

}  // namespace tessaly::ports
