// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessaly::cli {

/// `text` in single quotes, as bash, zsh and fish all read it; a quote inside is written so that
/// each of them takes it for itself.
std::string shellQuoted(std::string_view text);

/// A command as it may be typed, with quotes only around words that need them.
std::string commandLine(const std::vector<std::string>& words);

/// The keys of all settings, a blank between them.
std::string settingKeys();

}  // namespace tessaly::cli
