// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "app/services.h"
#include "base/failure.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// What is known of the start-up index of the data folder in use.
struct IndexState {
    std::string file;       ///< empty: the data folder cannot be reached
    bool isWanted = true;   ///< the setting `isStartUpIndex`, and a file system that allows it
    std::size_t notes = 0;  ///< in the index; 0 without one
    std::optional<base::Failure> failure;  ///< why there is none that can be used
};
/// Looks, and changes nothing.
IndexState indexState(Services& services);

/// Whether so many files had to be read that an index should be written (again): a thousand at
/// least, and a twentieth of all. A cancelled reading tells nothing.
bool isIndexStale(const store::ReadReport& report);

struct WrittenIndex {
    std::string file;
    std::size_t notes = 0;  ///< in the index
    std::size_t fresh = 0;  ///< not yet, since they have changed just now
};
/// Writes the index from the files now, taking over from the one before what has not changed, and
/// removes those of other data folders that have not been written for 90 days. Failure `exists`:
/// another process is writing it; `unavailable`: it is not wanted; `cancelled`.
base::Result<WrittenIndex> writeIndex(Services& services, store::NoteReader::Options options = {});

/// Has the index written by a process of its own in the background, if one is wanted; not within a
/// minute of the last. To be called when a reading has said that it is stale, and nobody waits. A
/// failure is logged: "could not start writing the start-up index: " and why.
void refreshIndexLater(Services& services);

/// The same by a process that is followed; null: none was started. Any thread.
std::unique_ptr<ports::FollowedJob> refreshIndexFollowed(Services& services);

}  // namespace tessaly::app
