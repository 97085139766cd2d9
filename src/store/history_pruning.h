// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/day.h"
#include "store/history_entry.h"

namespace tessaly::store {

/// What an index tells of a day (in UTC): its last entries that are of that day or later.
struct EntriesOfDay {
    bool hasEarlierDay = false;  ///< there are none, but others before
    std::uint64_t bytes = 0;     ///< of their texts, together
};
EntriesOfDay entriesOfDay(std::string_view index, base::Instant time);

/// Whether it is time to look for what is to go when `entry` is added to an index: it is the first
/// of a day, the day's entries pass a multiple of the step, or the index is too long.
bool isPruningDue(std::size_t indexBytes, const EntriesOfDay& ofDay, const HistoryEntry& entry,
                  const HistoryLimits& limits);

/// What is left of an index: no entries that are thinned out or too old (those behind a young one
/// are not), and of the others the newest, for as long as their texts leave room for a step. For
/// the sake of a change that is being made, the last two entries of the file `changing` do not go
/// for want of room. Lines that are not understood stay.
std::string pruned(std::string_view index, const HistoryLimits& limits, base::Instant now,
                   std::string_view changing);

}  // namespace tessaly::store
