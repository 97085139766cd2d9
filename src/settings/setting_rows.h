// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/sort_type.h"
#include "base/todo_character.h"
#include "base/weekday.h"

namespace tessaly::settings {

/// How a setting is stored and what it may hold.
enum class SettingType {
    boolean,
    integer,
    number,
    text,
    textList,
    dayOfWeek,
    todoCharacter,
    sortType
};

/// One setting that the user can see: the table of these is the only place that knows them all.
struct SettingRow {
    std::string_view key;  ///< also the name of its field in `Globals`, if not said there
    SettingType type;
    std::string_view defaultText;  ///< as `settings get` prints it; "" takes it from the locale
    std::string_view help;         ///< English; one line, for `settings list`
};

std::span<const SettingRow> settingRows();

/// The row of a key; null when there is none.
const SettingRow* findSetting(std::string_view key);

}  // namespace tessaly::settings
