// SPDX-License-Identifier: MIT
#pragma once

#include "base/day.h"

namespace tessaly::platform {

/// What `instant` is called in the user's zone. The zone is looked up anew at each call, so that a
/// running program follows a traveller.
base::LocalTime localTime(base::Instant instant);

/// When it is `local` in the user's zone: of two such times, either; for one that the clock leaves
/// out, a time within an hour or so of it. The year is 1678 to 2261.
base::Instant instantOf(const base::LocalTime& local);

}  // namespace tessaly::platform
