// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "base/day.h"
#include "base/sort_type.h"

namespace tessaly::search {

/// What notes are sorted by, in lists, the sidebar and among groups of results.
struct NoteSortKey {
    std::string_view lowerTitle;  ///< as `folded` makes it
    base::Instant modified{};
    base::Instant created{};
};

/// By title ascending, in the order of the UTF-8 bytes, or by date, newest first. Equal keys come
/// neither first: to be used by a stable sort.
bool comesBefore(const NoteSortKey& a, const NoteSortKey& b, base::SortType sortBy);

}  // namespace tessaly::search
