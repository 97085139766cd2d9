// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"

namespace tessaly::cli {

/// The user's editor, as a shell command: VISUAL, else EDITOR; empty when neither says one.
std::string userEditor();

/// What follows an editor's command to open `file` with the cursor in a line (from 0). The form
/// depends on the program that `command` begins with; one that is not known gets the file alone.
std::vector<std::string> editorArguments(std::string_view command, const std::string& file,
                                         std::optional<std::size_t> lineIndex);

/// Goes on as the editor, in place of this process: its streams, its process and its exit status
/// are ours. Returns only if that failed.
base::Failure becomeEditor(const std::string& command, const std::vector<std::string>& arguments);

}  // namespace tessaly::cli
