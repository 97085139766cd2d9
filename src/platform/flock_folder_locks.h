// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

#include "ports/folder_locks.h"

namespace tessaly::platform {

/// flock(2) on files of ours, one for each locked folder, named by the hash of its resolved path.
/// See `LockRecord` for what such a file holds. One that somebody deletes, while it is not held,
/// comes back as a new one. Any thread.
class FlockFolderLocks : public ports::FolderLocks {
public:
    /// `folder` holds the lock files and is made when it is needed. It must be the same for all
    /// processes of one user, whatever session they run in. `patience`: how long `take` waits.
    explicit FlockFolderLocks(std::string folder,
                              std::chrono::milliseconds patience = std::chrono::seconds{10});

    base::Result<std::unique_ptr<ports::FolderLock>> take(const std::string& folder) override;
    bool isUnfinished(const std::string& folder) override;

private:
    const std::string _folder;
    const std::chrono::milliseconds _patience;
};

}  // namespace tessaly::platform
