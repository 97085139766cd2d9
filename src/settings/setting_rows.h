// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "base/enum_names.h"

namespace tessaly::settings {

/// How a setting is stored and what it may hold.
enum class SettingType {
    boolean,
    integer,
    number,
    text,
    folder,  ///< an absolute path, or one below "~"; empty for none
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
    const char* help;              ///< English, for `base::tr`; one line, for `settings list`
    /// What a number may be; of a text or folder, its length in bytes. Other types have no range.
    double lowest = 0;
    double highest = 0;
};

std::span<const SettingRow> settingRows();

/// The row of a key; null when there is none.
const SettingRow* findSetting(std::string_view key);

}  // namespace tessaly::settings

namespace tessaly::base {

template <>
struct EnumNames<settings::SettingType> {
    using T = settings::SettingType;
    static constexpr std::array<EnumName<T>, 9> rows{{{T::boolean, "boolean"},
                                                      {T::integer, "integer"},
                                                      {T::number, "number"},
                                                      {T::text, "text"},
                                                      {T::folder, "folder"},
                                                      {T::textList, "textList"},
                                                      {T::dayOfWeek, "dayOfWeek"},
                                                      {T::todoCharacter, "todoCharacter"},
                                                      {T::sortType, "sortType"}}};
};

}  // namespace tessaly::base
