// SPDX-License-Identifier: MIT
#pragma once

#include "cli/context.h"
#include "search/search_results.h"

namespace tessaly::cli {

/// Prints what a search found: in a terminal in groups, each below the note that it was found in;
/// elsewhere "ADDRESS  [ ] content", or as JSON where that is wanted, a row a line without
/// sections.
void printResults(Context& context, const search::SearchResults& results);

}  // namespace tessaly::cli
