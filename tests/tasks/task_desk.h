// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "store/history.h"
#include "store/safe_files.h"
#include "support/failing_files.h"
#include "support/log_capture.h"
#include "support/temp_folder.h"
#include "tasks/operation_journal.h"
#include "tasks/operation_runner.h"
#include "tasks/task_operations.h"

namespace tessaly::tests {

using Notes = std::map<std::string, std::string>;

/// Several notes in one text: a line "-- Calendar/20190521.txt" begins each, its lines follow; one
/// that ends in "%" has no line break behind it.
Notes notesIn(std::string_view text);
std::string shown(const Notes& notes);

/// A data folder on the disk with its journal, on a Tuesday afternoon.
class TaskDesk {
public:
    explicit TaskDesk(const tasks::RewriteSettings& settings = {});

    void write(const Notes& notes);
    /// Every file of the data folder.
    Notes notes() const;

    /// Does what a command says and tells what came of it, a line each. Commands: "done", "cancel",
    /// "reopen", "schedule DAY", "all DAY DAY", "repeat UNIT COUNT", "delete", "delete-all",
    /// "finish", "archive", and behind them lines, as "20190521:1" or "Plan:3" (or notes, without
    /// numbers); a line may name its text, "Plan:3=Call_Bob", with "==" for that place alone.
    std::string command(std::string_view text);

    /// Undoes the last operation.
    tasks::Undone undo();

    tasks::TaskOperations& operations() { return _operations; }
    tasks::OperationJournal& journal() { return _journal; }
    const TempFolder& folder() const { return _folder; }
    LogCapture& log() { return _log; }
    /// All that is asked of the disk goes through these.
    FailingFiles& files() { return _files; }

    static constexpr std::string_view root = "data/";

private:
    LogCapture _log;
    TempFolder _folder;
    platform::PosixFileSystem _realFiles;
    platform::PosixFileChanges _realChanges;
    platform::FlockFolderLocks _realLocks;
    FailingFiles _files;
    platform::FixedClock _clock;
    store::History _history;
    store::SafeFiles _safeFiles;
    tasks::OperationJournal _journal;
    tasks::OperationRunner _runner;
    tasks::TaskOperations _operations;
};

}  // namespace tessaly::tests
