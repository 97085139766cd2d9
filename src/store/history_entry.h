// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/day.h"
#include "store/change_cause.h"

namespace tessaly::store {

/// A text that a file held.
struct HistoryEntry {
    base::Instant time{};  ///< when it was kept
    ChangeCause cause = ChangeCause::found;
    std::string hash;         ///< SHA-256 of the bytes, 64 hexadecimal digits
    std::uint64_t bytes = 0;  ///< their number
    std::string path;         ///< of the file, absolute

    bool operator==(const HistoryEntry&) const = default;
};

/// How much the history keeps.
struct HistoryLimits {
    std::chrono::days age{90};
    /// Of all texts, each counted once.
    std::uint64_t bytes = 512ULL << 20;
    /// Old texts go whenever a day's entries pass a multiple of this, and so much room is made
    /// then.
    std::uint64_t step = 64ULL << 20;
    /// Of the index, which is read as a whole when others wrote it.
    std::uint64_t indexBytes = 32ULL << 20;
    /// Lines of entries that were thinned out go when a process has made so many.
    std::size_t thinnedLines = 1024;
};

}  // namespace tessaly::store
