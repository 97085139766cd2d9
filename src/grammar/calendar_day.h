// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/day.h"

namespace tessaly::grammar {

/// The day that the name of a calendar note's file encodes, "20190305.txt": eight ASCII digits that
/// name a real day, then ".txt". Nothing for any other name. No folder stands before the name.
std::optional<base::Day> dayOfCalendarFilename(std::string_view filename);

/// The same for a path relative to the data folder, "Calendar/20190305.txt"; nothing outside the
/// calendar folder.
std::optional<base::Day> dayOfNotePath(std::string_view path);

}  // namespace tessaly::grammar
