// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "ports/standard_folders.h"

namespace tessaly::platform {

/// The user's home: $HOME, else what the user database says, else "/".
std::string homeFolder();

/// The homes of all programs' settings and state, by the rules below.
std::string configHome();
std::string stateHome();

/// The folders of the XDG base directory rules: from the environment where it holds an absolute
/// path, else in the user's home. `config`, `state` and `cache` are the sub-folders called
/// `programName`; `data` is the home of all programs' data.
ports::StandardFolders xdgFolders(const char* programName);

}  // namespace tessaly::platform
