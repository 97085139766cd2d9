// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ports/user_defaults.h"
#include "settings/setting_rows.h"

namespace tessaly::settings {

/// What a setting holds, in the form of its type: a number is always a fraction, an enumeration its
/// stored name.
using SettingValue = ports::DefaultsValue;

/// A stored value as the row's type reads it. Nothing: another type, out of the range, or no name
/// of the enumeration.
std::optional<SettingValue> acceptedValue(const SettingRow& row, const SettingValue& stored);

/// Reads a value as the user writes it; nothing for one that the row does not accept. Items of a
/// list are separated by commas, and blanks around them are passed over; a backslash before a
/// comma, a blank or a backslash takes its meaning away. Items are never empty.
std::optional<SettingValue> valueFromText(const SettingRow& row, std::string_view text);

/// A value as the user writes it: "on" and "off", numbers without grouping.
std::string textOf(const SettingValue& value);

/// What the row accepts, in words for the user: "title, modified, created".
std::string allowedValues(const SettingRow& row);

}  // namespace tessaly::settings
