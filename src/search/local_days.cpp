// SPDX-License-Identifier: MIT
#include "search/local_days.h"

namespace tessaly::search {

using std::chrono::days;
using std::chrono::floor;

base::Day LocalDays::operator()(base::Instant instant) {
    const auto start = floor<days>(instant);
    const auto [known, isNew] = _offsets.try_emplace(start.time_since_epoch().count());
    if (isNew) {
        const Seconds offset = offsetAt(start);
        if (offset == offsetAt(start + days(1) - Seconds(1))) {
            known->second = offset;
        }
    }
    return known->second ? base::Day(floor<days>(instant + *known->second))
                         : _localTimeOf(instant).day;
}

LocalDays::Seconds LocalDays::offsetAt(base::Instant instant) const {
    const base::LocalTime local = _localTimeOf(instant);
    const auto wall = std::chrono::sys_days(local.day) + std::chrono::hours(local.hour) +
                      std::chrono::minutes(local.minute) + Seconds(local.second);
    return wall - floor<Seconds>(instant);
}

}  // namespace tessaly::search
