// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/day.h"

namespace tessaly::cli {

/// "2019-05-21T14:07:00": a time on the wall, of no zone.
std::string textOfTime(const base::LocalTime& time);

/// Reads that, also without seconds; nothing for another form, and for no real day or time.
std::optional<base::LocalTime> timeFromText(std::string_view text);

}  // namespace tessaly::cli
