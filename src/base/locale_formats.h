// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/day.h"
#include "base/weekday.h"

namespace tessaly::base {

/// Whether times are shown with twelve hours and a marker, or with twenty-four.
enum class HourCycle { twelve, twentyFour };

/// How days and times are shown to one user. For display only: nothing it writes is ever stored or
/// read back. An immutable value; any thread. `locale` is an ICU locale name ("de_DE",
/// "th_TH@calendar=buddhist"); an unknown one shows as the root locale does. The locale decides the
/// calendar too, so that a Thai user reads Buddhist years while files keep Gregorian ones.
class LocaleFormats {
public:
    explicit LocaleFormats(std::string locale);

    const std::string& locale() const { return _locale; }

    /// A day by an ICU skeleton ("EEEdMMM", "dMMMyyyy", "d MMM"), in the locale's own order.
    std::string day(Day day, std::string_view skeleton) const;

    /// "h:mm a" or "HH:mm", with the symbols "AM" and "PM" in every locale.
    std::string time(int hour, int minute) const;

    /// Date and time of medium length ("5 Mar 2019, 14:07:33"), as the locale writes both.
    std::string dateAndTime(const LocalTime& time) const;

    /// Twelve when the locale's pattern for the skeleton "j" holds the letter "a".
    HourCycle hourCycle() const;

    /// The locale's first day of the week.
    DayOfWeek firstDayOfWeek() const;

    /// A number with the locale's digits and grouping, for counts shown to the user.
    std::string number(long long value) const;

private:
    std::string _locale;
};

}  // namespace tessaly::base
