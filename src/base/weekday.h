// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>

#include "base/enum_names.h"

namespace tessaly::base {

/// A day of the week, numbered as `std::chrono::weekday::c_encoding` does: Sunday is 0.
enum class DayOfWeek : unsigned { sunday, monday, tuesday, wednesday, thursday, friday, saturday };

template <>
struct EnumNames<DayOfWeek> {
    static constexpr std::array<EnumName<DayOfWeek>, 7> rows{{
        {DayOfWeek::sunday, "sunday"},
        {DayOfWeek::monday, "monday"},
        {DayOfWeek::tuesday, "tuesday"},
        {DayOfWeek::wednesday, "wednesday"},
        {DayOfWeek::thursday, "thursday"},
        {DayOfWeek::friday, "friday"},
        {DayOfWeek::saturday, "saturday"},
    }};
};

constexpr std::chrono::weekday toWeekday(DayOfWeek day) {
    return std::chrono::weekday{static_cast<unsigned>(day)};
}

}  // namespace tessaly::base
