// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/day.h"
#include "base/locale_formats.h"

namespace tessaly::grammar {

/// How often an event recurs.
enum class RecurrenceUnit { never, days, weeks, months, years };

/// Days, times and rules in the user's words. For display only. Any thread.
class DateStringHelper {
public:
    explicit DateStringHelper(base::LocaleFormats formats) : _formats(std::move(formats)) {}

    const base::LocaleFormats& formats() const { return _formats; }

    /// "5 Mar", by the template "d MMM".
    std::string shortDate(base::Day day) const;
    /// "5 Mar 2019", by the template "dMMMyyyy".
    std::string dateWithYear(base::Day day) const;
    /// "Tue, 5 Mar", by the template "EEEdMMM".
    std::string dayHeader(base::Day day) const;
    /// "today", "yesterday", "tomorrow", else as `dayHeader`.
    std::string relativeDay(base::Day day, base::Day today) const;
    /// `relativeDay` of the day that a calendar note's file name encodes; nothing for a name that
    /// encodes none.
    std::optional<std::string> calendarNoteName(std::string_view filename, base::Day today) const;
    /// "2:07 PM" or "14:07", as the locale has it.
    std::string time(const base::LocalTime& time) const;

    /// When an alert goes off, `minutesBefore` an event: "At time of event", "10 minutes before",
    /// "1 hour before", "2 weeks before": the largest unit that divides it. A negative count is
    /// after the start.
    static std::string alertOffset(long minutesBefore);

    /// "Never", "Every 2 Weeks".
    static std::string recurrence(RecurrenceUnit unit, int every);

private:
    base::LocaleFormats _formats;
};

}  // namespace tessaly::grammar
