// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "support/log_capture.h"
#include "support/notes_in_text.h"
#include "support/temp_folder.h"
#include "tasks/runner_process.h"
#include "tasks/task_operations.h"

namespace tessaly::tests {

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
    tasks::OperationJournal& journal() { return _process.journal; }
    const TempFolder& folder() const { return _folder; }
    LogCapture& log() { return _log; }
    FailingFiles& files() { return _process.failing; }

    static constexpr std::string_view root = "data/";

private:
    LogCapture _log;
    TempFolder _folder;
    RunnerProcess _process;
    tasks::TaskOperations _operations;
};

}  // namespace tessaly::tests
