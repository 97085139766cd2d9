// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/day.h"

namespace tessaly::store {

/// The day that a stray calendar file belongs to: a note directly in the calendar folder that is no
/// calendar note by its name, while its base name's first eight characters (all of it, when
/// shorter) name a real day ("20190305 2.txt", "20190305.md"), or the base name is that day as
/// year-month-day within eight characters ("2019-3-5.txt"). Nothing for calendar notes, conflict
/// copies by their name alone, names with a folder, and what is no note by its name.
std::optional<base::Day> dayOfStray(std::string_view filename);

}  // namespace tessaly::store
