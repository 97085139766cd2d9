// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "base/inline_executor.h"
#include "hooked_changes.h"
#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "store/data_store.h"
#include "support/temp_folder.h"

namespace tessaly::tests {

/// A data folder called "data", named outright, with room beside it: its history in "history",
/// locks in "locks". With a chosen root it is the local one, "share/org.example", until
/// `cloudContainer` gives another.
struct StoreFixture {
    enum class Root { named, chosen };

    TempFolder folder;
    platform::PosixFileSystem files;
    platform::PosixFileChanges disk;
    HookedChanges changes{disk};
    platform::FlockFolderLocks locks{folder / "locks"};
    platform::FixedClock clock{platform::parseTime("2019-03-05T14:07:33").value()};
    base::InlineExecutor executor;
    store::History history{{files, changes, locks, clock}, folder / "history"};
    store::SafeFiles safeFiles{{files, changes, locks, history}};
    ports::Trash trash = noTrash;  ///< asked anew each time, as is the next
    ports::CloudContainer cloudContainer = [] { return std::nullopt; };
    std::string root;
    store::DataStore store;

    explicit StoreFixture(Root which = Root::named)
        : root(folder / (which == Root::named ? "data" : "share/org.example")),
          store({files, changes, safeFiles, [this](const std::string& file) { return trash(file); },
                 clock, executor},
                {.folders = {.data = folder / "share", .config = {}, .state = {}, .cache = {}},
                 .bundleIdentifier = "org.example",
                 .dropboxAuthorised = {},
                 .cloudContainer = [this] { return cloudContainer(); },
                 .dataFolder = which == Root::named ? std::optional(root) : std::nullopt}) {}

    static base::Result<base::Done> noTrash(const std::string& file) {
        return base::Failure{base::Failure::Kind::unavailable, file + ": no trash here"};
    }
};

}  // namespace tessaly::tests
