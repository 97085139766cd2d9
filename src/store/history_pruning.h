// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/day.h"
#include "store/history_entry.h"

namespace tessaly::store {

/// Whether it is time to look for what is to go when `entry` has been added to `index`: it is the
/// first of a day (in UTC), the day's entries pass a multiple of the step, or the index is too
/// long.
bool isPruningDue(std::string_view index, const HistoryEntry& entry, const HistoryLimits& limits);

/// What is left of an index: no entries that are too old (those behind a young one are not), and of
/// the others the newest, for as long as their texts leave room for a step. For the sake of a
/// change that is being made, the last two entries of the file `changing` do not go for want of
/// room. Lines that are not understood stay.
std::string pruned(std::string_view index, const HistoryLimits& limits, base::Instant now,
                   std::string_view changing);

}  // namespace tessaly::store
