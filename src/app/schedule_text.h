// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/locale_formats.h"
#include "base/weekday.h"

namespace tessaly::app {

/// The day that a text in the schedule field means: what `parseDay` takes, "w12" (the first day of
/// that week which has not passed; next year's week when this year's is over) and "14" (the next
/// day of a month with that number, today included). Nothing for any other text.
std::optional<base::Day> scheduledDay(std::string_view text, base::Day today,
                                      base::DayOfWeek firstDayOfWeek,
                                      const base::LocaleFormats& formats);

/// A day that the field offers before anything is typed.
struct ScheduleChoice {
    std::string text;  ///< "Tomorrow", "Next week", in the user's words
    base::Day day{};
};
/// Today, tomorrow, the day after, the next week's first day, in two weeks, in a month.
std::vector<ScheduleChoice> scheduleChoices(base::Day today, base::DayOfWeek firstDayOfWeek,
                                            const base::LocaleFormats& formats);

/// "Friday, 8 March 2019 (in 3 days)": how the field says what it has understood.
std::string dayInWords(base::Day day, base::Day today, const base::LocaleFormats& formats);

/// The number of a day's week: a week belongs to the year that holds its fourth day, so that weeks
/// that begin on Monday are numbered as ISO 8601 has them.
int weekNumber(base::Day day, base::DayOfWeek firstDayOfWeek);

}  // namespace tessaly::app
