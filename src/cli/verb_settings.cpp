// SPDX-License-Identifier: MIT
#include <algorithm>
#include <charconv>
#include <string>

#include <fmt/format.h>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/json_line.h"
#include "cli/safe_text.h"
#include "cli/spans.h"
#include "cli/verb_functions.h"
#include "settings/list_text.h"
#include "settings/setting_rows.h"

namespace tessaly::cli {

namespace {

using base::tr;
using settings::SettingRow;
using settings::SettingType;

double numberOf(const std::string& text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void addValue(JsonObject& object, const SettingRow& row, const std::string& text) {
    switch (row.type) {
        case SettingType::boolean: object.add("value", text == "on"); break;
        case SettingType::integer:
            object.add("value", static_cast<std::int64_t>(numberOf(text)));
            break;
        case SettingType::number: object.add("value", numberOf(text)); break;
        case SettingType::textList:
            object.add("value", settings::itemsFromText(text).value_or(std::vector<std::string>{}));
            break;
        default: object.add("value", text);
    }
}

std::string valueOf(Context& context, std::string_view key) {
    const auto text = context.services.globals().text(key);
    return text ? *text : std::string{};
}

void printRecord(Context& context, const SettingRow& row) {
    JsonObject object;
    object.add("key", row.key).add("type", base::rawValue(row.type));
    addValue(object, row, valueOf(context, row.key));
    object.add("isDefault", context.services.globals().isDefault(row.key)).add("help", row.help);
    context.out.line(object.text());
}

/// A terminal shows what a setting is for in the line below it; elsewhere a setting is one line.
void printRow(Context& context, const SettingRow& row) {
    const std::string value = safeText(valueOf(context, row.key));
    const bool isDefault = context.services.globals().isDefault(row.key);
    if (!context.terminal.isTerminal) {
        context.out.line(fmt::format("{} ={}{}", row.key, value.empty() ? "" : " ", value));
        return;
    }
    const Spans left{{Style::section, std::string{row.key}},
                     {Style::dim, " = "},
                     {isDefault ? Style::plain : Style::hashtag, value}};
    context.out.line(drawn(left, context.terminal));
    const Spans help{{Style::dim, "  " + tr(row.help)}};
    context.out.line(
        drawn(cutTo(help, context.terminal.columns, context.terminal), context.terminal));
}

Exit listSettings(Context& context) {
    for (const SettingRow& row : settings::settingRows()) {
        if (context.invocation.json) {
            printRecord(context, row);
        } else {
            printRow(context, row);
        }
    }
    for (const settings::UnreadableSetting& one : context.services.globals().unreadable()) {
        complain(fmt::format(fmt::runtime(tr("the stored value of {} cannot be read, so its "
                                             "default holds; it may be: {}")),
                             one.key, one.allowed));
    }
    return Exit::done;
}

Exit endedWith(const base::Failure& failure) {
    complain(safeText(failure.description));
    return Exit::couldNot;
}

Exit getSetting(Context& context) {
    const std::string& key = context.invocation.arguments[1];
    const auto text = context.services.globals().text(key);
    if (!text) {
        return endedWith(text.failure());
    }
    if (context.invocation.json) {
        printRecord(context, *settings::findSetting(key));
    } else {
        context.out.line(safeText(*text));
    }
    return Exit::done;
}

Exit setSetting(Context& context) {
    const auto& arguments = context.invocation.arguments;
    const auto done = context.services.globals().set(arguments[1], arguments[2]);
    return done ? Exit::done : endedWith(done.failure());
}

Exit resetSetting(Context& context) {
    const auto done = context.services.globals().reset(context.invocation.arguments[1]);
    return done ? Exit::done : endedWith(done.failure());
}

struct Action {
    std::string_view name;
    std::size_t arguments;  // with the action itself
    Exit (*run)(Context& context);
};

constexpr std::array settingsActions{
    Action{"list", 1, listSettings},
    Action{"get", 2, getSetting},
    Action{"set", 3, setSetting},
    Action{"reset", 2, resetSetting},
};

}  // namespace

Exit runSettings(Context& context) {
    const auto& arguments = context.invocation.arguments;
    const auto action =
        std::find_if(settingsActions.begin(), settingsActions.end(), [&](const Action& row) {
            return row.name == arguments.front() && row.arguments == arguments.size();
        });
    if (action == settingsActions.end()) {
        complain(fmt::format(fmt::runtime(tr("{} needs {}")), context.invocation.verb->name,
                             context.invocation.verb->synopsis));
        return Exit::misuse;
    }
    return action->run(context);
}

}  // namespace tessaly::cli
