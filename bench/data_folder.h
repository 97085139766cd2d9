// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "base/executor.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/system_clock.h"
#include "ports/file_system.h"
#include "store/data_store.h"
#include "store/history.h"
#include "store/safe_files.h"

namespace tessaly::bench {

/// A data folder, with all that its owner wants; nothing is written here. What is given outlives
/// it.
struct DataFolder {
    DataFolder(std::string root, ports::FileSystem& fileSystem, base::Executor& executor)
        : files(fileSystem),
          pool(executor),
          roots{.folders = {},
                .bundleIdentifier = {},
                .dropboxAuthorised = {},
                .cloudContainer = {},
                .dataFolder = std::move(root)} {}

    ports::FileSystem& files;
    base::Executor& pool;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{"/nowhere"};
    platform::SystemClock clock;
    store::History history{{files, changes, locks, clock}, "/nowhere"};
    store::SafeFiles safeFiles{{files, changes, locks, history}};
    store::DataStore::Roots roots;
    store::DataStore dataStore{{files, changes, safeFiles, {}, clock, pool}, roots};
};

}  // namespace tessaly::bench
