// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/failure.h"

namespace tessaly::ports {

/// A folder on a file system that does not report what other machines change in it.
struct BlindFolder {
    std::string folder;
    std::string fileSystem;  ///< "NFS"

    bool operator==(const BlindFolder&) const = default;
};

/// What watching some folders would meet with.
struct WatchOutlook {
    std::vector<BlindFolder> blind;  ///< of the folders asked for, in their order
    /// Folders that this user's programs can watch at a time; nothing: not known.
    std::optional<std::size_t> maxFolders;
    /// Why none can be watched now: too many programs of this user do.
    std::optional<base::Failure> refusal;
};

/// Looks at folders, given by absolute paths, as a watcher would meet them; one that is not there
/// is no blind one. Nothing is watched. Any thread; blocks for the disk.
using WatchOutlooks = std::function<WatchOutlook(const std::vector<std::string>& folders)>;

}  // namespace tessaly::ports
