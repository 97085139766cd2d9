// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <fmt/format.h>

#include "base/enum_names.h"
#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/context.h"
#include "cli/marked_text.h"
#include "cli/read_input.h"
#include "cli/rpc_settings.h"
#include "cli/safe_text.h"
#include "cli/verb_functions.h"
#include "editor/mark_action.h"
#include "settings/nearest_name.h"

namespace tessaly::cli {

namespace {

using base::Failure;
using base::Result;
using base::tr;
using editor::MarkAction;

Result<MarkAction> actionFrom(const std::string& name) {
    if (const auto action = base::fromRawValue<MarkAction>(name)) {
        return *action;
    }
    std::vector<std::string_view> names;
    for (const auto& row : base::EnumNames<MarkAction>::rows) {
        names.push_back(row.text);
    }
    const auto nearest = settings::nearestName(name, names);
    const std::string words = nearest.empty() ? tr("there is no action “{0}”; there are: {1}")
                                              : tr("there is no action “{0}”; did you mean “{1}”?");
    const std::string known =
        nearest.empty() ? fmt::format("{}", fmt::join(names, ", ")) : std::string{nearest};
    return Failure{Failure::Kind::malformed,
                   fmt::format(fmt::runtime(words), safeText(name), known)};
}

Failure wrongValue(std::string_view option, const std::string& form) {
    return {Failure::Kind::malformed, fmt::format(fmt::runtime(tr("{} takes {}")), option, form)};
}

Result<MarkPlace> placeFrom(const Invocation& invocation) {
    MarkPlace place;
    place.unit = invocation.has("--bytes") ? TextUnit::bytes : TextUnit::utf16;
    if (invocation.has("--lines")) {
        place.lines = lineNumbersFrom(invocation.value("--lines"));
        if (!place.lines) {
            return wrongValue("--lines", tr("lines counted from 1, as 2-4 or 2"));
        }
    }
    if (invocation.has("--select")) {
        place.selection = selectionFrom(invocation.value("--select"));
        if (!place.selection) {
            return wrongValue("--select", tr("a location and a length, as 10,3"));
        }
    }
    return place;
}

/// Nothing is printed before it is known that all went well: the output takes the place of the
/// user's text.
Exit mark(Context& context, MarkAction action, const MarkPlace& place) {
    const auto text = readInput(context.services.ports().files, "-", context.cancelled);
    if (!text) {
        return couldNot(context, text.failure());
    }
    if (!base::isUtf8(*text)) {
        complain(tr("standard input is not UTF-8 text"));
        return Exit::couldNot;
    }
    const auto marked =
        markedText(action, *text, place, markSettingsOf(context.services.globals()));
    if (!marked) {
        return couldNot(context, marked.failure());
    }
    if (context.invocation.json) {
        context.out.line(recordOf(*marked).text());
    } else {
        context.out.write(marked->text);
    }
    return Exit::done;
}

}  // namespace

Exit runMark(Context& context) {
    const auto action = actionFrom(context.invocation.arguments.front());
    if (!action) {
        return misuse(action.failure().description);
    }
    const auto place = placeFrom(context.invocation);
    return place ? mark(context, *action, *place) : misuse(place.failure().description);
}

}  // namespace tessaly::cli
