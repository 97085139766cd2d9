// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "base/day.h"
#include "base/failure.h"
#include "ports/clock.h"

namespace tessaly::platform {

/// A time that the user gave, in both its forms.
struct GivenTime {
    base::LocalTime local;
    base::Instant instant;
};

/// Reads "2019-03-05T14:07:33" (RFC 3339), whose seconds and zone may be missing; without a zone
/// it is the user's. A day alone is its noon. Fractions of seconds are cut. Failure `malformed`:
/// another form, a day or time that does not exist, or a year outside 1678 to 2261.
base::Result<GivenTime> parseTime(std::string_view text);

/// A clock that stands still, for scripts and tests; other instants are called what the system's
/// clock calls them.
class FixedClock : public ports::Clock {
public:
    explicit FixedClock(const GivenTime& time) : _time(time) {}

    base::Instant now() override { return _time.instant; }
    base::LocalTime local(base::Instant instant) override;

private:
    const GivenTime _time;
};

}  // namespace tessaly::platform
