// SPDX-License-Identifier: MIT
#pragma once

#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "store/history.h"
#include "store/safe_files.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"
#include "tasks/operation_journal.h"
#include "tasks/operation_runner.h"

namespace tessaly::tests {

/// A process of ours as far as locks and files can tell; its notes are in "data".
struct RunnerProcess {
    RunnerProcess(const TempFolder& folder, const platform::GivenTime& now)
        : locks(folder / "locks"),
          clock(now),
          history({failing, failing, failing, clock}, folder / "history"),
          safe({failing, failing, failing, history}),
          journal({failing, failing, failing, clock}, folder / "undo", folder / "data"),
          runner({failing, failing, safe}, journal) {}

    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks;
    platform::FixedClock clock;
    /// All that is asked of the disk goes through these.
    FailingFiles failing{files, changes, locks};
    store::History history;
    store::SafeFiles safe;
    tasks::OperationJournal journal;
    tasks::OperationRunner runner;
};

}  // namespace tessaly::tests
