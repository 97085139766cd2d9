// SPDX-License-Identifier: MIT
#include "platform/system_clock.h"

#include "platform/local_time.h"

namespace tessaly::platform {

base::Instant SystemClock::now() {
    return std::chrono::time_point_cast<base::Instant::duration>(std::chrono::system_clock::now());
}

base::LocalTime SystemClock::local(base::Instant instant) {
    return localTime(instant);
}

}  // namespace tessaly::platform
