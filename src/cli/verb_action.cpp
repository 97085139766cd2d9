// SPDX-License-Identifier: MIT
#include "cli/verb_action.h"

#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/safe_text.h"

namespace tessaly::cli {

namespace {

using base::tr;

bool takes(const VerbAction& action, std::string_view option) {
    return fmt::format(" {} ", action.options).find(fmt::format(" {} ", option)) !=
           std::string::npos;
}

}  // namespace

std::optional<std::string> misuseOf(const VerbAction& action, const Invocation& invocation) {
    const std::string name =
        fmt::format("{}{}{}", invocation.verb->name, action.name.empty() ? "" : " ", action.name);
    const auto& arguments = invocation.arguments;
    if (arguments.size() < action.fewest) {
        return fmt::format(fmt::runtime(tr("{} needs {}")), name, action.synopsis);
    }
    if (arguments.size() > action.most) {
        return fmt::format(fmt::runtime(tr("unexpected argument “{}”")),
                           safeText(arguments[action.most]));
    }
    for (const auto& [option, value] : invocation.options) {
        if (!takes(action, option)) {
            return fmt::format(fmt::runtime(tr("{0} has no option {1}")), name, option);
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::cli
