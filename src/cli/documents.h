// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessaly::cli {

/// The manual page, in mdoc, English.
std::string manPage();

/// What makes a shell complete the command's verbs, options and arguments.
std::string bashCompletion();
std::string zshCompletion();
std::string fishCompletion();

/// One of the documents by its name: "man", "completion-bash", "completion-zsh",
/// "completion-fish". Nothing for another name.
std::optional<std::string> documentNamed(std::string_view name);

}  // namespace tessaly::cli
