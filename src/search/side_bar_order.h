// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include "base/sort_type.h"
#include "search/side_bar_item.h"

namespace tessaly::search {

/// Below 0, 0 or above 0: how two names stand to each other, as `folded` makes them, and
/// where these are the same by their bytes, so that no two different names are equal.
int compareNames(std::string_view a, std::string_view b);

/// Whether a tag stands before another in a list of all of them: parents before what is nested in
/// them, part by part by name.
bool tagComesBefore(std::string_view a, std::string_view b);

/// The place of a kind among kinds of siblings: folders before notes, the fixed rows of the section
/// of notes around them.
std::ptrdiff_t placeOf(SideBarItemType type);

/// The order of rows below one parent: kinds apart, folders before notes; notes by `sortBy`, all
/// else by name. No two rows are equal: notes that are equal by `sortBy` stand by file name.
class SideBarOrder {
public:
    explicit SideBarOrder(base::SortType sortBy) : _sortBy(sortBy) {}

    bool operator()(const SideBarItem& a, const SideBarItem& b) const;
    /// Sorts rows that are all notes; looks at each title once.
    void sortNotes(std::span<std::unique_ptr<SideBarItem>> rows) const;

private:
    base::SortType _sortBy;
};

}  // namespace tessaly::search
