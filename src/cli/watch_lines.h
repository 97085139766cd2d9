// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/json_line.h"
#include "cli/spans.h"
#include "cli/terminal.h"
#include "store/cloud_note.h"

namespace tessaly::cli {

/// "added    Notes/Plans.txt": what happened, in the user's words and a column of its own, and the
/// path relative to the data folder `root`; of a folder with a slash at its end.
Spans watchLine(const store::CloudNote& note, std::string_view root);

/// The same as JSON; `batch` is counted from 1.
JsonObject recordOf(const store::CloudNote& note, std::string_view root, std::size_t batch);

/// "file:///data/My%20notes"; `path` is absolute.
std::string fileUrl(std::string_view path);

}  // namespace tessaly::cli
