// SPDX-License-Identifier: MIT
#include "app/schedule_text.h"

#include <charconv>
#include <chrono>
#include <cstdlib>

#include <fmt/format.h>

#include "app/note_address.h"
#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::app {
namespace {

// One or two digits and nothing else.
std::optional<int> smallNumber(std::string_view text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    if (text.empty() || text.size() > 2 ||
        std::from_chars(text.data(), end, number) != std::from_chars_result{end, std::errc{}}) {
        return std::nullopt;
    }
    return number < 0 ? std::nullopt : std::optional{number};
}

/// The year that a week's number counts in.
std::chrono::year yearOfWeek(base::Day day, base::DayOfWeek firstDayOfWeek) {
    return base::addDays(base::startOfWeek(day, base::toWeekday(firstDayOfWeek)), 3).year();
}

base::Day firstWeekOf(std::chrono::year year, base::DayOfWeek firstDayOfWeek) {
    // The fourth of January lies in the first week by its very definition.
    return base::startOfWeek(year / std::chrono::January / 4, base::toWeekday(firstDayOfWeek));
}

/// The first day of a week; nothing where the year has no week of that number.
std::optional<base::Day> startOfWeekNumber(int number, std::chrono::year year,
                                           base::DayOfWeek firstDayOfWeek) {
    const base::Day day = base::addDays(firstWeekOf(year, firstDayOfWeek), 7 * (number - 1));
    return number >= 1 && yearOfWeek(day, firstDayOfWeek) == year ? std::optional{day}
                                                                  : std::nullopt;
}

std::optional<base::Day> dayOfWeekNumber(std::string_view text, base::Day today,
                                         base::DayOfWeek firstDayOfWeek) {
    if (text.empty() || (text[0] != 'w' && text[0] != 'W')) {
        return std::nullopt;
    }
    const auto number = smallNumber(text.substr(1));
    const base::Day thisWeek = base::startOfWeek(today, base::toWeekday(firstDayOfWeek));
    const std::chrono::year year = yearOfWeek(today, firstDayOfWeek);
    // Week 53 may be years away, but never more than seven.
    for (int i = 0; number && i <= 7; ++i) {
        const auto first = startOfWeekNumber(*number, year + std::chrono::years{i}, firstDayOfWeek);
        if (first && *first >= thisWeek) {
            return std::max(*first, today);
        }
    }
    return std::nullopt;
}

std::optional<base::Day> dayOfMonthNumber(std::string_view text, base::Day today) {
    const auto number = smallNumber(text);
    if (!number || *number < 1 || *number > 31) {
        return std::nullopt;
    }
    const std::chrono::day wanted{static_cast<unsigned>(*number)};
    for (std::chrono::year_month month{today.year(), today.month()};;
         month += std::chrono::months{1}) {
        const base::Day day = month / wanted;
        if (day.ok() && day >= today) {
            return day;
        }
    }
}

std::string distanceInWords(int days) {
    switch (days) {
        case -1: return base::tr("yesterday");
        case 0: return base::tr("today");
        case 1: return base::tr("tomorrow");
        default: break;
    }
    const auto count = static_cast<unsigned long>(std::abs(days));
    return fmt::format(fmt::runtime(days > 0 ? base::trPlural("in {} day", "in {} days", count)
                                             : base::trPlural("{} day ago", "{} days ago", count)),
                       count);
}

}  // namespace

int weekNumber(base::Day day, base::DayOfWeek firstDayOfWeek) {
    const std::chrono::year year = yearOfWeek(day, firstDayOfWeek);
    return base::daysBetween(firstWeekOf(year, firstDayOfWeek), day) / 7 + 1;
}

std::optional<base::Day> scheduledDay(std::string_view text, base::Day today,
                                      base::DayOfWeek firstDayOfWeek,
                                      const base::LocaleFormats& formats) {
    const std::string word{base::trimmed(text)};
    auto day = parseDay(word, today, formats);
    day = day ? day : dayOfWeekNumber(word, today, firstDayOfWeek);
    return day ? day : dayOfMonthNumber(word, today);
}

std::vector<ScheduleChoice> scheduleChoices(base::Day today, base::DayOfWeek firstDayOfWeek,
                                            const base::LocaleFormats& formats) {
    const base::Day dayAfter = base::addDays(today, 2);
    const base::Day nextWeek =
        base::addDays(base::startOfWeek(today, base::toWeekday(firstDayOfWeek)), 7);
    return {{base::tr("Today"), today},
            {base::tr("Tomorrow"), base::addDays(today, 1)},
            {formats.day(dayAfter, "EEEE"), dayAfter},
            {base::tr("Next week"), nextWeek},
            {base::tr("In two weeks"), base::addDays(today, 14)},
            {base::tr("In a month"), base::addMonths(today, 1)}};
}

std::string dayInWords(base::Day day, base::Day today, const base::LocaleFormats& formats) {
    return fmt::format("{} ({})", formats.day(day, "EEEEdMMMMyyyy"),
                       distanceInWords(base::daysBetween(today, day)));
}

}  // namespace tessaly::app
