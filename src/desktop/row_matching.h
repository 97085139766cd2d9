// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "search/search_results.h"

namespace tessaly::desktop {

/// For each row of `newRows` the row of `oldRows` that it is; -1: it is new. A row is the same when
/// note, kind and text are, wherever its line stands now; else when note, kind and line are, and
/// the text is much the same, as when a task has been completed or put off. No old row is two.
std::vector<int> matchRows(const std::vector<search::SearchResultItem>& oldRows,
                           const std::vector<search::SearchResultItem>& newRows);

}  // namespace tessaly::desktop
