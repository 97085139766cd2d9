// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/locale_formats.h"
#include "cli/json_request.h"
#include "editor/editor_commands.h"
#include "grammar/todo.h"
#include "settings/globals.h"
#include "store/note_model.h"
#include "tasks/task_rewrites.h"

namespace tessaly::cli {

/// The settings that come with a request, by their keys; those that do not have their defaults,
/// whatever the user's are.
class RpcSettings {
public:
    /// Failure, in words for the user: no such setting, or no such value.
    base::Result<base::Done> read(const JsonValue& object);

    grammar::MarkerSettings markers();
    store::CountSettings counting();
    tasks::RewriteSettings rewriting(base::HourCycle cycle);
    editor::MarkSettings marking();

private:
    /// A store that is read alone.
    class Values : public ports::UserDefaults {
    public:
        std::optional<ports::DefaultsValue> valueForKey(std::string_view key) override;
        base::Result<base::Done> setValue(std::string_view key,
                                          const ports::DefaultsValue& value) override;
        base::Result<base::Done> removeValue(std::string_view key) override;
        std::vector<std::string> keys() override;
        std::optional<base::Failure> problem() override { return std::nullopt; }

    private:
        std::map<std::string, ports::DefaultsValue, std::less<>> _values;
    };

    Values _values;
    settings::Globals _globals{_values, _values, base::DayOfWeek::monday};
};

/// What the editor's commands depend on.
editor::MarkSettings markSettingsOf(const settings::Globals& globals);

}  // namespace tessaly::cli
