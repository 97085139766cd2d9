// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tessaly::base {

/// An opaque colour, 8 bits a channel.
struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    auto operator<=>(const Color&) const = default;
};

/// Reads "#RRGGBB", digits in either case; nothing for any other text.
constexpr std::optional<Color> colorFromHex(std::string_view text) {
    if (text.size() != 7 || text[0] != '#') {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    for (const char c : text.substr(1)) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : -1;
        if (digit < 0) {
            return std::nullopt;
        }
        value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    return Color{static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
                 static_cast<std::uint8_t>(value)};
}

/// The colours of what a day holds, wherever the program draws them.
inline constexpr Color reminderRed = *colorFromHex("#FF2E2E");
inline constexpr Color eventPurple = *colorFromHex("#cd00cd");
inline constexpr Color todoOrange = *colorFromHex("#E68E00");
inline constexpr Color scheduleBlue = *colorFromHex("#3a45c3");
inline constexpr Color doneGreen = *colorFromHex("#63ce7f");
/// The dot of an index that no item of the day has.
inline constexpr Color darkGray = *colorFromHex("#555555");

}  // namespace tessaly::base
