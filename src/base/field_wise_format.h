// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"

namespace tessaly::base {

/// Days in a form whose fields (weekday, day of the month, month) depend on nothing but themselves,
/// put together of texts that were made once: names of thousands of days cost next to nothing. An
/// immutable value; any thread.
class FieldWiseFormat {
public:
    /// Formats a day by a pattern of ICU's.
    using FormatField = std::function<std::string(std::string_view pattern, Day day)>;

    /// Of a pattern as Unicode's technical standard 35 describes them, for a Gregorian calendar.
    /// Nothing: it has other fields than those three.
    static std::optional<FieldWiseFormat> of(std::string_view pattern, const FormatField& format);

    std::string text(Day day) const;

private:
    /// Which of the texts a part shows: always the first, or that of the day's field.
    enum class Field { literal, weekday, dayOfMonth, month };
    struct Part {
        Field field = Field::literal;
        std::vector<std::string> texts;
    };
    static Part partOf(char letter, std::size_t count, const FormatField& format);

    std::vector<Part> _parts;
};

}  // namespace tessaly::base
