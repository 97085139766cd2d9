// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "cli/json_line.h"
#include "search/filter_item.h"

namespace tessaly::cli {

/// A line for each parameter: the name that its file holds, and what it means in words.
std::vector<std::string> filterLines(const search::Filter& filter);

/// The parameters as records: the three fields of the file.
std::vector<JsonObject> filterRecords(const search::Filter& filter);

}  // namespace tessaly::cli
