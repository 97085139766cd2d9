// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/day.h"
#include "ports/clock.h"

namespace tessaly::cli {

/// "2019-12-31T08:00:00Z", to the second.
std::string rfc3339(base::Instant instant);

/// "2019-12-31T09:00:00+01:00": a wall-clock time with the zone's offset at that time. A time that
/// the zone's clocks skip is given the offset before or after the change.
std::string rfc3339(const base::LocalTime& time, ports::Clock& clock);

}  // namespace tessaly::cli
