// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"

namespace tessaly::store {

/// What happened to a file. The values are stored and sent; their order is fixed.
enum class UpdateType { deleted = 0, added = 1, changed = 2, none = 3 };

/// One file or folder of the data folder, as the watcher reports it.
struct CloudNote {
    std::string filename;                        ///< last path component, extension included
    base::NoteType base = base::NoteType::none;  ///< the part of the data folder it lies in
    UpdateType update = UpdateType::none;
    base::Instant contentChangedDate{};  ///< of a deleted one the last that was known
    std::string url;                     ///< absolute path
    bool hasConflicts = false;           ///< other versions of it lie beside it
    bool isFolder = false;
};

/// What the watcher found at one time.
struct CloudBatch {
    /// The first batches tell what is there, not what arrives: some of it ahead of the rest, and
    /// then all, so that what is not in it is not there.
    enum class Kind { ahead, all, later };

    std::string root;  ///< the data folder that `url`s lie in, absolute
    std::vector<CloudNote> notes;
    Kind kind = Kind::later;
};

/// The path of `note` below its kind's folder; empty for that folder itself.
std::string_view filenameOf(const CloudNote& note, std::string_view root);

/// Receives every batch, on the thread that made it; must not wait for the watcher.
using CloudSyncListener = std::function<void(const CloudBatch& batch)>;

}  // namespace tessaly::store
