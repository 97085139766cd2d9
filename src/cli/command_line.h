// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "cli/terminal.h"
#include "cli/verbs.h"

namespace tessaly::cli {

/// What the user typed, taken apart.
struct Invocation {
    const VerbRow* verb = nullptr;  ///< null: none was named
    std::vector<std::string> arguments;
    std::map<std::string, std::string, std::less<>> options;  ///< the verb's; a switch holds ""
    std::optional<std::string> root;
    std::optional<std::string> now;
    std::optional<std::string> dump;  ///< a document to print that is made from the verbs
    ColorChoice color = ColorChoice::automatic;
    bool json = false;
    bool help = false;
    bool version = false;

    bool has(std::string_view option) const { return options.find(option) != options.end(); }
    std::string value(std::string_view option) const {
        const auto found = options.find(option);
        return found == options.end() ? std::string{} : found->second;
    }
};

/// Failure: misuse, told in the user's words.
base::Result<Invocation> parseCommandLine(int argc, const char* const* argv);

/// The verb that is named, also where all else is misuse; null when none is, or when another word
/// stands before it.
const VerbRow* verbIn(int argc, const char* const* argv);

/// The verb whose name is spelt most like `word`; null when none is near.
const VerbRow* nearestVerb(std::string_view word);

}  // namespace tessaly::cli
