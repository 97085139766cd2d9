// SPDX-License-Identifier: MIT
#include "cli/json_times.h"

#include <chrono>

#include <fmt/format.h>

namespace tessaly::cli {

namespace {

using std::chrono::sys_days;
using std::chrono::sys_seconds;

sys_seconds asIfInUtc(const base::LocalTime& time) {
    return sys_days{time.day} + std::chrono::hours{time.hour} + std::chrono::minutes{time.minute} +
           std::chrono::seconds{time.second};
}

std::chrono::seconds offsetAt(sys_seconds instant, ports::Clock& clock) {
    return asIfInUtc(clock.local(instant)) - instant;
}

/// Whether a clock can be asked: instants are nanoseconds in 64 bits, 1678 to 2261.
bool isInstant(sys_seconds wall) {
    constexpr auto margin = std::chrono::days{2};
    return wall > std::chrono::floor<std::chrono::seconds>(base::Instant::min()) + margin &&
           wall < std::chrono::floor<std::chrono::seconds>(base::Instant::max()) - margin;
}

std::string digits(const base::LocalTime& time) {
    return fmt::format("{}T{:02}:{:02}:{:02}", base::tagText(time.day), time.hour, time.minute,
                       time.second);
}

}  // namespace

std::string rfc3339(base::Instant instant) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(instant);
    const auto day = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::hh_mm_ss time{seconds - day};
    return digits({base::Day{day}, static_cast<int>(time.hours().count()),
                   static_cast<int>(time.minutes().count()),
                   static_cast<int>(time.seconds().count())}) +
           "Z";
}

std::string rfc3339(const base::LocalTime& time, ports::Clock& clock) {
    const sys_seconds wall = asIfInUtc(time);
    if (!isInstant(wall)) {
        return digits(time) + "Z";
    }
    // The offset is asked for near the time first, then at the time that this offset gives.
    const auto near = offsetAt(wall, clock);
    const auto offset = offsetAt(wall - near, clock);
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(offset).count();
    const auto magnitude = minutes < 0 ? -minutes : minutes;
    return fmt::format("{}{}{:02}:{:02}", digits(time), minutes < 0 ? '-' : '+', magnitude / 60,
                       magnitude % 60);
}

}  // namespace tessaly::cli
