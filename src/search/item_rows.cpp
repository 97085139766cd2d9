// SPDX-License-Identifier: MIT
#include "search/item_rows.h"

#include <algorithm>
#include <tuple>

#include "search/folded_text.h"

namespace tessaly::search {

namespace {

using calendar::CachedCalendarItem;
using ItemKind = ports::CalendarItem::Kind;

constexpr int windowDays = 365;

std::optional<base::Day> dayToShow(const CachedCalendarItem& item, const DayRange& days,
                                   base::Day today) {
    std::optional<base::Day> chosen;
    for (const base::Day day : item.occuranceDates) {
        if (days.holds(day)) {
            chosen = day;
            if (day >= today) {
                break;
            }
        }
    }
    return chosen;
}

/// Seconds since midnight; -1 for what belongs to the whole day.
int timeOfDay(const ports::CalendarItem& item) {
    const bool hasTime = item.start && !item.isAllDay;
    return hasTime ? (item.start->hour * 60 + item.start->minute) * 60 + item.start->second : -1;
}

bool isShownBefore(const FoundItem& a, const FoundItem& b) {
    const auto orderOf = [](const FoundItem& found) {
        const CachedCalendarItem& item = *found.item;
        return std::tuple(item.calendarItem.kind, found.day, timeOfDay(item.calendarItem),
                          std::string_view(item.title), std::string_view(item.identifier));
    };
    return orderOf(a) < orderOf(b);
}

}  // namespace

DayRange itemWindow(base::Day today) {
    return {base::addDays(today, -windowDays), base::addDays(today, windowDays)};
}

std::vector<FoundItem> findItems(std::span<const CachedCalendarItem> items,
                                 const NoteMatcher& matcher, base::Day today) {
    const DayRange days = itemWindow(today).with(matcher.days());
    const FilterConditions& filter = matcher.filter();
    std::vector<FoundItem> found;
    for (const CachedCalendarItem& item : items) {
        const bool isEvent = item.calendarItem.kind == ItemKind::event;
        const auto day = dayToShow(item, days, today);
        if (!day || !(isEvent ? filter.eventItem : filter.reminderItem)) {
            continue;
        }
        if (const auto match = matcher.matchTitle(folded(item.title))) {
            found.push_back({&item, *day, *match});
        }
    }
    std::sort(found.begin(), found.end(), isShownBefore);
    return found;
}

void addItems(ResultRows& rows, std::span<const FoundItem> items) {
    for (const FoundItem& found : items) {
        rows.addItem(*found.item, found.day, found.matchInFoldedTitle);
    }
}

}  // namespace tessaly::search
