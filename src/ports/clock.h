// SPDX-License-Identifier: MIT
#pragma once

#include "base/day.h"

namespace tessaly::ports {

/// The time now, and what an instant is called in the user's zone. Any thread; never fails.
class Clock {
public:
    virtual ~Clock() = default;

    virtual base::Instant now() = 0;

    /// Date and time of `instant` on the wall in the user's zone, which may change while the
    /// program runs.
    virtual base::LocalTime local(base::Instant instant) = 0;

    /// The day it is for the user.
    base::Day today() { return local(now()).day; }
};

}  // namespace tessaly::ports
