// SPDX-License-Identifier: MIT
#pragma once

#include "ports/clock.h"

namespace tessaly::platform {

/// The kernel's clock and the zone that $TZ, else the system, names at the time of the call.
class SystemClock : public ports::Clock {
public:
    base::Instant now() override;
    base::LocalTime local(base::Instant instant) override;
};

}  // namespace tessaly::platform
