// SPDX-License-Identifier: MIT
#include "store/history_thinning.h"

namespace tessaly::store {

bool ThinningOut::spares(const HistoryEntry& entry) {
    Later& later = _later[entry.path];
    const auto typedIn =
        entry.cause == ChangeCause::typed
            ? std::optional(std::chrono::floor<Slot>(entry.time.time_since_epoch()))
            : std::nullopt;
    const bool isThinned = typedIn && typedIn == later.typedIn && later.entries >= 2;
    later = {later.entries + 1, typedIn};
    return !isThinned;
}

}  // namespace tessaly::store
