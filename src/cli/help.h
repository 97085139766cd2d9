// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "cli/terminal.h"
#include "cli/verbs.h"

namespace tessaly::cli {

/// "tessaly 0.1.0"
std::string versionText();

/// What `tessaly --help` prints.
std::string helpText(const Terminal& terminal);
/// What `tessaly VERB --help` prints.
std::string verbHelpText(const VerbRow& verb, const Terminal& terminal);

/// `text` broken at blanks so that no line behind `indent` blanks is wider than `columns`; each
/// line ends in a line break. An empty line in `text` stays one.
std::string wrapped(std::string_view text, std::size_t indent, std::size_t columns);

}  // namespace tessaly::cli
