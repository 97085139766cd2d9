// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

#include "app/services.h"
#include "cli/json_line.h"
#include "grammar/todo_helper.h"

namespace tessaly::cli {

/// The lines of a text as JSON: each the fields of its record, then its hashtags, mentions and date
/// tags, by the settings as they are now.
std::vector<JsonObject> textRecords(app::Services& services, const grammar::NoteText& note);

/// The date tags of one line.
std::vector<JsonObject> dateTagRecords(std::string_view line);

}  // namespace tessaly::cli
