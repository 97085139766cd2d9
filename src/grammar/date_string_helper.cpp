// SPDX-License-Identifier: MIT
#include "grammar/date_string_helper.h"

#include <array>
#include <cstdlib>

#include "base/localisation.h"
#include "grammar/calendar_day.h"

namespace tessaly::grammar {

namespace {

/// A translated text with its "%d" replaced by a count.
std::string withCount(std::string text, long count) {
    constexpr std::string_view place = "%d";
    const std::size_t at = text.find(place);
    return at == std::string::npos ? text : text.replace(at, place.size(), std::to_string(count));
}

struct OffsetUnit {
    long minutes;
    std::string (*before)(unsigned long count);
    std::string (*after)(unsigned long count);
};

/// The largest first, so that the first that divides an offset names it.
constexpr std::array<OffsetUnit, 4> offsetUnits{{
    {7L * 24 * 60,
     [](unsigned long n) { return base::trPlural("%d week before", "%d weeks before", n); },
     [](unsigned long n) { return base::trPlural("%d week after", "%d weeks after", n); }},
    {24L * 60, [](unsigned long n) { return base::trPlural("%d day before", "%d days before", n); },
     [](unsigned long n) { return base::trPlural("%d day after", "%d days after", n); }},
    {60L, [](unsigned long n) { return base::trPlural("%d hour before", "%d hours before", n); },
     [](unsigned long n) { return base::trPlural("%d hour after", "%d hours after", n); }},
    {1L, [](unsigned long n) { return base::trPlural("%d minute before", "%d minutes before", n); },
     [](unsigned long n) { return base::trPlural("%d minute after", "%d minutes after", n); }},
}};

}  // namespace

std::string DateStringHelper::shortDate(base::Day day) const {
    return _formats.day(day, "d MMM");
}

std::string DateStringHelper::dateWithYear(base::Day day) const {
    return _formats.day(day, "dMMMyyyy");
}

std::string DateStringHelper::dayHeader(base::Day day) const {
    return _formats.day(day, "EEEdMMM");
}

std::string DateStringHelper::relativeDay(base::Day day, base::Day today) const {
    switch (base::daysBetween(today, day)) {
        case -1: return base::tr("yesterday");
        case 0: return base::tr("today");
        case 1: return base::tr("tomorrow");
        default: return dayHeader(day);
    }
}

std::optional<std::string> DateStringHelper::calendarNoteName(std::string_view filename,
                                                              base::Day today) const {
    const auto day = dayOfCalendarFilename(filename);
    return day ? std::optional{relativeDay(*day, today)} : std::nullopt;
}

std::string DateStringHelper::time(const base::LocalTime& time) const {
    return _formats.time(time.hour, time.minute);
}

std::string DateStringHelper::alertOffset(long minutesBefore) {
    if (minutesBefore == 0) {
        return base::tr("At time of event");
    }
    const long offset = std::labs(minutesBefore);
    for (const OffsetUnit& unit : offsetUnits) {
        if (offset % unit.minutes == 0) {
            const long count = offset / unit.minutes;
            const auto words = minutesBefore > 0 ? unit.before : unit.after;
            return withCount(words(static_cast<unsigned long>(count)), count);
        }
    }
    return {};
}

std::string DateStringHelper::recurrence(RecurrenceUnit unit, int every) {
    switch (unit) {
        case RecurrenceUnit::never: break;
        case RecurrenceUnit::days: return withCount(base::tr("Every %d Days"), every);
        case RecurrenceUnit::weeks: return withCount(base::tr("Every %d Weeks"), every);
        case RecurrenceUnit::months: return withCount(base::tr("Every %d Months"), every);
        case RecurrenceUnit::years: return withCount(base::tr("Every %d Years"), every);
    }
    return base::tr("Never");
}

}  // namespace tessaly::grammar
