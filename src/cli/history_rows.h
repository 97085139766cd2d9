// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/note_history.h"
#include "cli/context.h"
#include "cli/json_line.h"

namespace tessaly::cli {

enum class Of { allFiles, oneFile };

/// Prints texts of the history, a line each, or their records. A terminal gets what matters most
/// first, and no name where all are of one file.
void printRows(Context& context, const std::vector<app::HistoryRow>& rows, Of of);

JsonObject recordOf(const app::HistoryRow& row);

/// What happened to a text, in the user's words.
std::string causeInWords(store::ChangeCause cause);

}  // namespace tessaly::cli
