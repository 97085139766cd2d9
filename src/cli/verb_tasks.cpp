// SPDX-License-Identifier: MIT
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "app/note_lists.h"
#include "base/enum_names.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/safe_text.h"
#include "cli/task_lines.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::tr;

app::NoteScope taskScope(const Invocation& invocation) {
    if (invocation.has("--calendar")) {
        return app::NoteScope::calendar;
    }
    return invocation.has("--notes") ? app::NoteScope::general : app::NoteScope::all;
}

/// The states in a list with commas; nothing, and the reason told, when one is no task's state.
std::optional<std::vector<grammar::TodoType>> wantedStates(const Invocation& invocation) {
    std::vector<grammar::TodoType> types;
    if (!invocation.has("--state")) {
        return types;
    }
    const std::string list = invocation.value("--state") + ",";
    for (std::size_t start = 0; start < list.size();) {
        const std::size_t comma = list.find(',', start);
        const std::string word = list.substr(start, comma - start);
        const auto type = base::fromRawValue<grammar::TodoType>(word);
        if (!type || !grammar::isTask(*type)) {
            complain(fmt::format(
                fmt::runtime(tr("“{}” is no state: open, done, cancelled or scheduled")),
                safeText(word)));
            return std::nullopt;
        }
        types.push_back(*type);
        start = comma + 1;
    }
    return types;
}

}  // namespace

Exit runTasks(Context& context) {
    const auto states = wantedStates(context.invocation);
    if (!states) {
        return Exit::misuse;
    }
    const app::TaskRows rows = app::listTasks(context.services, taskScope(context.invocation),
                                              *states, context.readOptions());
    if (!isComplete(context, rows.report)) {
        return Exit::couldNot;
    }
    printTaskList(context, rows.tasks);
    return Exit::done;
}

}  // namespace tessaly::cli
