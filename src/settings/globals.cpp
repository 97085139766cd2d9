// SPDX-License-Identifier: MIT
#include "settings/globals.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <optional>

#include <fmt/format.h>

#include "base/localisation.h"
#include "settings/nearest_name.h"

namespace tessaly::settings {

using base::Done;
using base::Failure;

namespace {

Failure unknownSetting(std::string_view key) {
    std::vector<std::string_view> names;
    for (const SettingRow& row : settingRows()) {
        names.push_back(row.key);
    }
    const auto nearest = nearestName(key, names);
    const std::string words = fmt::format("{}: {}", key, base::tr("there is no such setting"));
    return {Failure::Kind::notFound,
            nearest.empty() ? words
                            : fmt::format("{}; {} {}", words, base::tr("the nearest is"), nearest)};
}

Failure wrongValue(const SettingRow& row, std::string_view text) {
    return {Failure::Kind::malformed,
            fmt::format("{}: \"{}\": {} {}", row.key, text, base::tr("this setting takes:"),
                        allowedValues(row))};
}

}  // namespace

Globals::Globals(ports::UserDefaults& standard, ports::UserDefaults& group,
                 base::DayOfWeek localeFirstDay)
    : _standard(standard), _group(group), _localeFirstDay(localeFirstDay) {}

SettingValue Globals::defaultValue(const SettingRow& row) const {
    if (row.type == SettingType::dayOfWeek && row.defaultText.empty()) {
        return std::string(base::rawValue(_localeFirstDay));
    }
    const auto value = valueFromText(row, row.defaultText);
    assert(value);
    return *value;
}

SettingValue Globals::value(const SettingRow& row) const {
    const auto stored = _standard.valueForKey(row.key);
    const auto accepted = stored ? acceptedValue(row, *stored) : std::nullopt;
    return accepted ? *accepted : defaultValue(row);
}

template <class Type>
Type Globals::get(std::string_view key) const {
    const SettingRow* row = findSetting(key);
    assert(row != nullptr);
    return std::get<Type>(value(*row));
}

template <class Enum>
Enum Globals::getEnum(std::string_view key) const {
    const auto named = base::fromRawValue<Enum>(get<std::string>(key));
    assert(named);
    return *named;
}

double Globals::fontSize() const {
    return get<double>("fontSize");
}
double Globals::calendarFontSize() const {
    return get<double>("calendarFontSize");
}
int Globals::fontDelta() const {
    return static_cast<int>(get<std::int64_t>("fontDelta"));
}
std::string Globals::fontFamily() const {
    return get<std::string>("fontFamily");
}
double Globals::maxTextWidth() const {
    return get<double>("maxTextWidth");
}
bool Globals::isRenderingMarkdown() const {
    return get<bool>("isRenderingMarkdown");
}
base::DayOfWeek Globals::firstDayOfWeek() const {
    return getEnum<base::DayOfWeek>("firstDayOfWeek");
}
base::TodoCharacter Globals::defaultTodoCharacter() const {
    return getEnum<base::TodoCharacter>("defaultTodoCharacter");
}
bool Globals::isAsteriskTodo() const {
    return get<bool>("isAsteriskTodo");
}
bool Globals::isDashTodo() const {
    return get<bool>("isDashTodo");
}
bool Globals::isNumbersTodo() const {
    return get<bool>("isNumbersTodo");
}
bool Globals::isAppendScheduleLinks() const {
    return get<bool>("isAppendScheduleLinks");
}
bool Globals::isAppendCompletionLinks() const {
    return get<bool>("isAppendCompletionLinks");
}
bool Globals::isCopyScheduleGeneralNoteTodos() const {
    return get<bool>("isCopyScheduleGeneralNoteTodos");
}
bool Globals::isIndentedTasksInCalendar() const {
    return get<bool>("isIndentedTasksInCalendar");
}
bool Globals::isTasksInMonthlyCalendar() const {
    return get<bool>("isTasksInMonthlyCalendar");
}
bool Globals::isSmartMarkdownLink() const {
    return get<bool>("isSmartMarkdownLink");
}
base::SortType Globals::sortBy() const {
    return getEnum<base::SortType>("sortBy");
}
std::vector<std::string> Globals::expandedSideBarItems() const {
    return get<std::vector<std::string>>("expandedSideBarItems");
}
std::vector<std::string> Globals::blackListedCalendarId() const {
    return get<std::vector<std::string>>("sync_blacklist");
}
bool Globals::isIconBadge() const {
    return get<bool>("isIconBadge");
}
bool Globals::allowAccessLater() const {
    return get<bool>("allowAccessLater");
}
bool Globals::isFirstTimeUndoScheduling() const {
    return get<bool>("isFirstTimeUndoScheduling");
}
std::string Globals::cloudDriveContainer() const {
    return get<std::string>("cloudDriveContainer");
}
bool Globals::isStartUpIndex() const {
    return get<bool>("isStartUpIndex");
}
bool Globals::isCheckingSpelling() const {
    return get<bool>("isCheckingSpelling");
}

base::Result<std::string> Globals::text(std::string_view key) const {
    const SettingRow* row = findSetting(key);
    if (row == nullptr) {
        return unknownSetting(key);
    }
    return textOf(value(*row));
}

base::Result<Done> Globals::set(std::string_view key, std::string_view text) {
    const SettingRow* row = findSetting(key);
    if (row == nullptr) {
        return unknownSetting(key);
    }
    const auto value = valueFromText(*row, text);
    return value ? _standard.setValue(key, *value) : wrongValue(*row, text);
}

base::Result<Done> Globals::reset(std::string_view key) {
    return findSetting(key) != nullptr ? _standard.removeValue(key) : unknownSetting(key);
}

bool Globals::isDefault(std::string_view key) const {
    const SettingRow* row = findSetting(key);
    return row == nullptr || value(*row) == defaultValue(*row);
}

std::vector<UnreadableSetting> Globals::unreadable() const {
    const auto keys = _standard.keys();
    std::vector<UnreadableSetting> found;
    for (const SettingRow& row : settingRows()) {
        const auto stored = _standard.valueForKey(row.key);
        const bool isReadable = stored && acceptedValue(row, *stored);
        if (!isReadable && std::binary_search(keys.begin(), keys.end(), row.key)) {
            found.push_back({std::string(row.key), allowedValues(row)});
        }
    }
    return found;
}

}  // namespace tessaly::settings
