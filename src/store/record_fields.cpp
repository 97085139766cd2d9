// SPDX-License-Identifier: MIT
#include "store/record_fields.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include <fmt/format.h>

namespace tessaly::store {
namespace {

constexpr std::array<std::pair<char, char>, 4> escapes{
    {{'\\', '\\'}, {'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}}};

}  // namespace

std::string_view takeField(std::string_view& line) {
    const std::string_view field = line.substr(0, line.find('\t'));
    line.remove_prefix(std::min(field.size() + 1, line.size()));
    return field;
}

std::string escaped(std::string_view text, std::string_view special) {
    std::string field;
    field.reserve(text.size());
    for (const char c : text) {
        const auto* const row = std::find_if(escapes.begin(), escapes.end(),
                                             [&](const auto& escape) { return escape.first == c; });
        if (row == escapes.end() || special.find(c) == special.npos) {
            field += c;
        } else {
            field.append({'\\', row->second});
        }
    }
    return field;
}

std::optional<std::string> unescaped(std::string_view field) {
    std::string text;
    text.reserve(field.size());
    for (std::size_t at = 0; at < field.size(); ++at) {
        if (field[at] == '\t') {
            return std::nullopt;
        }
        if (field[at] != '\\') {
            text += field[at];
            continue;
        }
        const char letter = ++at < field.size() ? field[at] : '\0';
        const auto* const row =
            std::find_if(escapes.begin(), escapes.end(),
                         [&](const auto& escape) { return escape.second == letter; });
        if (row == escapes.end()) {
            return std::nullopt;
        }
        text += row->first;
    }
    return text;
}

std::string timeText(base::Instant time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::hh_mm_ss<std::chrono::nanoseconds> clock{time - day};
    return fmt::format("{}T{:02}:{:02}:{:02}.{:09}Z", base::tagText(base::Day{day}),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                       clock.subseconds().count());
}

std::optional<base::Instant> timeOf(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00.000000000Z";
    if (text.size() != form.size() || text[10] != 'T' || text[13] != ':' || text[16] != ':' ||
        text[19] != '.' || text[29] != 'Z') {
        return std::nullopt;
    }
    const auto day = base::dayFromTagText(text.substr(0, 10));
    const auto hour = numberOf(text.substr(11, 2), 23);
    const auto minute = numberOf(text.substr(14, 2), 59);
    const auto second = numberOf(text.substr(17, 2), 59);
    const auto fraction = numberOf(text.substr(20, 9), 999'999'999);
    // Instants count nanoseconds in 64 bits, which end in these years.
    if (!day || !hour || !minute || !second || !fraction || int{day->year()} < 1678 ||
        int{day->year()} > 2261) {
        return std::nullopt;
    }
    return std::chrono::sys_days{*day} + std::chrono::hours{*hour} + std::chrono::minutes{*minute} +
           std::chrono::seconds{*second} + std::chrono::nanoseconds{*fraction};
}

}  // namespace tessaly::store
