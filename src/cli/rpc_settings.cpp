// SPDX-License-Identifier: MIT
#include "cli/rpc_settings.h"

#include <fmt/format.h>

#include "base/localisation.h"
#include "settings/setting_values.h"

namespace tessaly::cli {

using base::Done;
using base::Failure;
using base::Result;
using ports::DefaultsValue;

namespace {

template <class T>
std::optional<DefaultsValue> valueOf(std::optional<T> value) {
    return value ? std::optional<DefaultsValue>(std::move(*value)) : std::nullopt;
}

std::optional<DefaultsValue> valueOf(const JsonValue& value) {
    if (const auto text = value.text()) {
        return std::string{*text};
    }
    for (const auto& read :
         {valueOf(value.boolean()), valueOf(value.integer()), valueOf(value.number())}) {
        if (read) {
            return read;
        }
    }
    return valueOf(value.texts());
}

grammar::MarkerSettings markersOf(const settings::Globals& globals) {
    return {globals.isAsteriskTodo(), globals.isDashTodo(), globals.isNumbersTodo()};
}

}  // namespace

std::optional<DefaultsValue> RpcSettings::Values::valueForKey(std::string_view key) {
    const auto found = _values.find(key);
    return found == _values.end() ? std::nullopt : std::optional{found->second};
}

Result<Done> RpcSettings::Values::setValue(std::string_view key, const DefaultsValue& value) {
    _values.insert_or_assign(std::string{key}, value);
    return Done{};
}

Result<Done> RpcSettings::Values::removeValue(std::string_view key) {
    _values.erase(std::string{key});
    return Done{};
}

std::vector<std::string> RpcSettings::Values::keys() {
    std::vector<std::string> keys;
    for (const auto& [key, value] : _values) {
        keys.push_back(key);
    }
    return keys;
}

Result<Done> RpcSettings::read(const JsonValue& object) {
    for (const std::string& key : object.fieldNames()) {
        if (const auto known = _globals.text(key); !known) {
            return known.failure();
        }
        const settings::SettingRow& row = *settings::findSetting(key);
        const auto value = valueOf(*object.field(key));
        const auto accepted = value ? settings::acceptedValue(row, *value) : std::nullopt;
        if (!accepted) {
            const bool isBoolean = row.type == settings::SettingType::boolean;
            return Failure{Failure::Kind::malformed,
                           fmt::format("{}: {} {}", key, base::tr("this setting takes:"),
                                       isBoolean ? "true, false" : settings::allowedValues(row))};
        }
        (void)_values.setValue(key, *accepted);
    }
    return Done{};
}

grammar::MarkerSettings RpcSettings::markers() {
    return markersOf(_globals);
}

store::CountSettings RpcSettings::counting() {
    return {markersOf(_globals), _globals.isIndentedTasksInCalendar()};
}

tasks::RewriteSettings RpcSettings::rewriting(base::HourCycle cycle) {
    return {markersOf(_globals), _globals.isAppendCompletionLinks(),
            _globals.isAppendScheduleLinks(), _globals.isCopyScheduleGeneralNoteTodos(), cycle};
}

editor::MarkSettings RpcSettings::marking() {
    return markSettingsOf(_globals);
}

editor::MarkSettings markSettingsOf(const settings::Globals& globals) {
    return {markersOf(globals), globals.defaultTodoCharacter()};
}

}  // namespace tessaly::cli
