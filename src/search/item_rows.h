// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "base/day.h"
#include "calendar/cached_calendar_item.h"
#include "search/day_range.h"
#include "search/note_matcher.h"
#include "search/result_rows.h"

namespace tessaly::search {

/// The days in which searches look for events and reminders: a year before and behind today.
DayRange itemWindow(base::Day today);

/// An event or reminder that matches, on the one day on which it is shown.
struct FoundItem {
    const calendar::CachedCalendarItem* item = nullptr;
    base::Day day{};
    Stretch matchInFoldedTitle;
};

/// Those of `items` that match by kind, days and title, in the order of the rows: events, then
/// reminders; by day, then what has no time or lasts all day, then by time, title and identifier.
/// An item is shown on its first day from today on, else on its last; days outside of the window
/// and the matcher's days do not count. The items must outlive what is returned.
std::vector<FoundItem> findItems(std::span<const calendar::CachedCalendarItem> items,
                                 const NoteMatcher& matcher, base::Day today);

/// Adds a row for each, below sections of their days.
void addItems(ResultRows& rows, std::span<const FoundItem> items);

}  // namespace tessaly::search
