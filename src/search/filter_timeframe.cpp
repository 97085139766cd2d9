// SPDX-License-Identifier: MIT
#include "search/filter_conditions.h"

namespace tessaly::search {
namespace {

DayRange weekOf(base::Day day, base::DayOfWeek firstDayOfWeek) {
    const base::Day first = base::startOfWeek(day, base::toWeekday(firstDayOfWeek));
    return {first, base::addDays(first, 6)};
}

/// The month that lies `count` months behind that of `day`.
DayRange monthFrom(base::Day day, int count) {
    const base::Day first = base::addMonths(day.year() / day.month() / 1, count);
    return {first, base::addDays(base::addMonths(first, 1), -1)};
}

}  // namespace

DayRange daysOf(FilterTimeframe timeframe, base::Day today, base::DayOfWeek firstDayOfWeek) {
    switch (timeframe) {
        case FilterTimeframe::lastWeek: return weekOf(base::addDays(today, -7), firstDayOfWeek);
        case FilterTimeframe::thisWeek: return weekOf(today, firstDayOfWeek);
        case FilterTimeframe::nextWeek: return weekOf(base::addDays(today, 7), firstDayOfWeek);
        case FilterTimeframe::lastMonth: return monthFrom(today, -1);
        case FilterTimeframe::thisMonth: return monthFrom(today, 0);
        case FilterTimeframe::nextMonth: return monthFrom(today, 1);
        case FilterTimeframe::past: return {std::nullopt, base::addDays(today, -1)};
        case FilterTimeframe::future: return {base::addDays(today, 1), std::nullopt};
        case FilterTimeframe::allTime:
        case FilterTimeframe::custom: break;
    }
    return {};
}

}  // namespace tessaly::search
