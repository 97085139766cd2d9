// SPDX-License-Identifier: MIT
#include "cli/rpc_times.h"

#include <charconv>

#include <fmt/format.h>

namespace tessaly::cli {

namespace {

/// Two digits behind `sign`, below `limit`.
std::optional<int> part(std::string_view text, std::size_t at, char sign, int limit) {
    if (text.size() < at + 3 || text[at] != sign || text[at + 1] == '-') {
        return std::nullopt;
    }
    int value = -1;
    const char* const start = text.data() + at + 1;
    if (std::from_chars(start, start + 2, value).ptr != start + 2 || value >= limit) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::string textOfTime(const base::LocalTime& time) {
    return fmt::format("{}T{:02}:{:02}:{:02}", base::tagText(time.day), time.hour, time.minute,
                       time.second);
}

std::optional<base::LocalTime> timeFromText(std::string_view text) {
    constexpr std::size_t dayEnd = 10;
    constexpr std::size_t minuteEnd = 16;
    constexpr std::size_t secondEnd = 19;
    const auto day = base::dayFromTagText(text.substr(0, dayEnd));
    const auto hour = part(text, dayEnd, 'T', 24);
    const auto minute = part(text, dayEnd + 3, ':', 60);
    const auto second = text.size() == minuteEnd ? 0 : part(text, minuteEnd, ':', 60);
    if (!day || !hour || !minute || !second || text.size() > secondEnd) {
        return std::nullopt;
    }
    return base::LocalTime{*day, *hour, *minute, *second};
}

}  // namespace tessaly::cli
