// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "base/day.h"

namespace tessaly::store {

// The fields of lines in files of ours, separated by tabs.

/// Takes what stands before the next tab off the front of a line; all of it where there is none.
std::string_view takeField(std::string_view& line);

/// `text` as a field of a line: each of the characters `special` of "\\", "\t", "\n" and "\r" is
/// written as a backslash and a letter. What is no UTF-8 stays as it is.
std::string escaped(std::string_view text, std::string_view special = "\\\t\n");

/// The text of a field; nothing when it holds a tab or ends within an escape that we write, or has
/// one that we do not.
std::optional<std::string> unescaped(std::string_view field);

/// RFC 3339 in UTC, to the nanosecond: "2019-03-05T12:00:00.000000001Z".
std::string timeText(base::Instant time);

/// Nothing for another form, and for a year before 1678 or after 2261.
std::optional<base::Instant> timeOf(std::string_view text);

/// A whole number from 0 to `highest` in decimal digits alone.
template <class Number>
std::optional<Number> numberOf(std::string_view text, Number highest) {
    Number value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    const bool read = !text.empty() && text.front() != '-' && error == std::errc() && stop == end;
    return read && value <= highest ? std::optional(value) : std::nullopt;
}

}  // namespace tessaly::store
