// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <ratio>
#include <string>
#include <unordered_map>

#include "base/day.h"
#include "store/history_entry.h"

namespace tessaly::store {

/// Of what a file was given while its user typed, most says nothing that the texts around it do
/// not. A typed entry is thinned out when the file's next one is typed as well, in the same ten
/// minutes of the clock, unless it is among the file's last two: what the file holds, and what it
/// is about to get. So these stay: what stood there before the typing, the last of each ten
/// minutes, what was typed last before anything else happened to the file, and all that has another
/// cause.
///
/// The line of an entry that is thinned out may still stand in the index, though its text is gone.
/// It is no entry any longer, and no later line makes it one again: whoever reads an index, now or
/// in a later version, goes by this rule.
class ThinningOut {
public:
    /// Whether an entry stands. Asked of each entry once, of a file's newer ones first.
    bool spares(const HistoryEntry& entry);

private:
    using Slot = std::chrono::duration<std::int64_t, std::ratio<600>>;
    struct Later {
        int entries = 0;
        std::optional<Slot> typedIn;  ///< of the file's next entry, if that is typed
    };
    std::unordered_map<std::string, Later> _later;  // by path
};

}  // namespace tessaly::store
