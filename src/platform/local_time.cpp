// SPDX-License-Identifier: MIT
#include "platform/local_time.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <ctime>
#include <mutex>

namespace tessaly::platform {

namespace {

// The C library guards its zone with a lock of its own, which the thread sanitizer cannot see.
std::mutex zoneMutex;

}  // namespace

base::LocalTime localTime(base::Instant instant) {
    const std::time_t seconds =
        std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count();
    std::tm parts{};
    {
        const std::lock_guard lock{zoneMutex};
        // localtime_r alone looks at the zone once in the life of the process.
        ::tzset();
        ::localtime_r(&seconds, &parts);
    }
    return {base::Day{std::chrono::year{parts.tm_year + 1900},
                      std::chrono::month{static_cast<unsigned>(parts.tm_mon + 1)},
                      std::chrono::day{static_cast<unsigned>(parts.tm_mday)}},
            parts.tm_hour, parts.tm_min, std::min(parts.tm_sec, 59)};
}

base::Instant instantOf(const base::LocalTime& local) {
    assert(int{local.day.year()} > 1677 && int{local.day.year()} < 2262);
    std::tm parts{};
    parts.tm_year = int{local.day.year()} - 1900;
    parts.tm_mon = static_cast<int>(unsigned{local.day.month()}) - 1;
    parts.tm_mday = static_cast<int>(unsigned{local.day.day()});
    parts.tm_hour = local.hour;
    parts.tm_min = local.minute;
    parts.tm_sec = local.second;
    parts.tm_isdst = -1;
    const std::lock_guard lock{zoneMutex};
    return base::Instant{std::chrono::seconds{std::mktime(&parts)}};
}

}  // namespace tessaly::platform
