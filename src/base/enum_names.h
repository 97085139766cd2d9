// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

namespace tessaly::base {

/// One value of an enumeration and the text by which it is stored or sent. The text is part of
/// the file formats: it never changes with the user's language.
template <class Enum>
struct EnumName {
    Enum value;
    std::string_view text;
};

/// Specialised beside each enumeration that has texts: `rows` lists every value, in its order.
template <class Enum>
struct EnumNames;

/// The stored text of `value`.
template <class Enum>
constexpr std::string_view rawValue(Enum value) {
    for (const auto& row : EnumNames<Enum>::rows) {
        if (row.value == value) {
            return row.text;
        }
    }
    return {};
}

/// The value stored as `text` (exact, case-sensitive); nothing when no value is stored so.
template <class Enum>
constexpr std::optional<Enum> fromRawValue(std::string_view text) {
    for (const auto& row : EnumNames<Enum>::rows) {
        if (row.text == text) {
            return row.value;
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::base
