// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace tessaly::base {

/// A calendar day: Gregorian, without a zone, whatever calendar the user's locale shows.
using Day = std::chrono::year_month_day;

/// A point in time on the system's clock, in nanoseconds, as file dates are kept.
using Instant = std::chrono::sys_time<std::chrono::nanoseconds>;

/// A wall-clock date and time in the user's zone, to the second.
struct LocalTime {
    Day day{};
    int hour = 0;    ///< 0–23
    int minute = 0;  ///< 0–59
    int second = 0;  ///< 0–59; a leap second reads as 59

    auto operator<=>(const LocalTime&) const = default;
};

/// "yyyyMMdd" in ASCII digits, the base name of a calendar note. Years 0–9999.
std::string fileText(Day day);
/// "yyyy-MM-dd" in ASCII digits, the form of a day in note text. Years 0–9999.
std::string tagText(Day day);

/// Reads exactly "yyyyMMdd"; nothing for another form or a day that does not exist.
std::optional<Day> dayFromFileText(std::string_view text);
/// Reads exactly "yyyy-MM-dd"; nothing for another form or a day that does not exist.
std::optional<Day> dayFromTagText(std::string_view text);

/// `day` moved by whole days, either way.
Day addDays(Day day, int count);
/// `day` moved by whole months; the day of the month is cut to the target month's last.
Day addMonths(Day day, int count);
/// Days from `from` to `to`; negative when `to` is earlier.
int daysBetween(Day from, Day to);
/// The last day not after `day` that is a `first`: the start of its week.
Day startOfWeek(Day day, std::chrono::weekday first);

}  // namespace tessaly::base
