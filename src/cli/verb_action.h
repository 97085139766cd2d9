// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/verbs.h"

namespace tessaly::cli {

/// One of the things that a verb does, by the first word behind it.
struct VerbAction {
    std::string_view name;      ///< empty: what the verb does when it reads no such word
    std::string_view synopsis;  ///< of its arguments
    std::size_t fewest;         ///< arguments, with the action itself
    std::size_t most;
    std::string_view options;  ///< what it takes of those of the verb, by blanks
    Exit (*run)(Context& context);
};

/// What is wrong with the words behind the verb, for the user; nothing: they fit the action.
std::optional<std::string> misuseOf(const VerbAction& action, const Invocation& invocation);

}  // namespace tessaly::cli
