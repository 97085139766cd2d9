// SPDX-License-Identifier: MIT
#include "base/day.h"

#include <fmt/format.h>

namespace tessaly::base {

namespace {

std::optional<int> digits(std::string_view text) {
    int value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
    }
    return value;
}

std::optional<Day> dayOf(std::string_view year, std::string_view month, std::string_view day) {
    const auto y = digits(year);
    const auto m = digits(month);
    const auto d = digits(day);
    if (!y || !m || !d) {
        return std::nullopt;
    }
    const Day result{std::chrono::year{*y}, std::chrono::month{static_cast<unsigned>(*m)},
                     std::chrono::day{static_cast<unsigned>(*d)}};
    return result.ok() ? std::optional{result} : std::nullopt;
}

}  // namespace

std::string fileText(Day day) {
    return fmt::format("{:04}{:02}{:02}", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
}

std::string tagText(Day day) {
    return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
}

std::optional<Day> dayFromFileText(std::string_view text) {
    if (text.size() != 8) {
        return std::nullopt;
    }
    return dayOf(text.substr(0, 4), text.substr(4, 2), text.substr(6, 2));
}

std::optional<Day> dayFromTagText(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    return dayOf(text.substr(0, 4), text.substr(5, 2), text.substr(8, 2));
}

Day addDays(Day day, int count) {
    return std::chrono::sys_days{day} + std::chrono::days{count};
}

Day addMonths(Day day, int count) {
    const Day moved = day + std::chrono::months{count};
    return moved.ok() ? moved : Day{moved.year() / moved.month() / std::chrono::last};
}

int daysBetween(Day from, Day to) {
    return static_cast<int>((std::chrono::sys_days{to} - std::chrono::sys_days{from}).count());
}

Day startOfWeek(Day day, std::chrono::weekday first) {
    const std::chrono::weekday weekday{std::chrono::sys_days{day}};
    return std::chrono::sys_days{day} - (weekday - first);
}

}  // namespace tessaly::base
