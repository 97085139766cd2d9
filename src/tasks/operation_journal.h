// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "ports/clock.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "ports/folder_locks.h"
#include "tasks/operation.h"

namespace tessaly::tasks {

/// How many operations can be undone, and for how long.
struct JournalLimits {
    std::size_t operations = 1000;
    std::chrono::days age{90};
};

/// The operations on the tasks of one data folder: the one that is being made, so that it can be
/// finished if its process dies, and those that were made, so that they can be undone. Each is a
/// file of its own in a folder that the owner alone can read: "pending", or its number in ten
/// digits. A file that is not understood is passed over, and kept. Any thread and process: whoever
/// changes it holds the lock.
///
/// Numbers grow, and none is given twice: whoever has read of an operation, and undoes it after
/// another process did, never meets a later one of the same number. So the file of the last one
/// stays, as "NUMBER.forgotten", until there is a higher number.
class OperationJournal {
public:
    struct Tools {
        ports::FileSystem& files;
        ports::FileChanges& changes;
        ports::FolderLocks& locks;
        ports::Clock& clock;
    };

    /// `folder` holds the journals of all data folders, each in a folder named after the hash of
    /// the resolved path of its data folder.
    OperationJournal(Tools tools, const std::string& folder, std::string root,
                     const JournalLimits& limits = {});

    const std::string& root() const { return _root; }
    const std::string& folder() const { return _folder; }

    /// The right to make or undo operations, one at a time; waits for the others. It may be held
    /// while the data folder's lock is taken, never the other way round.
    base::Result<std::unique_ptr<ports::FolderLock>> take();

    /// Whether an operation is being made, or was by a process that died. One look at the disk,
    /// without the lock.
    bool hasPending() const;

    // Under the lock.

    /// The operation that a process that died was making; nothing when there is none. `malformed`:
    /// what is there cannot be read.
    base::Result<std::optional<Operation>> pending() const;

    /// Writes down what is about to be made; on disk before it returns. `exists`: there is a
    /// pending operation.
    base::Result<base::Done> begin(const Operation& operation);

    /// Step `index` of the pending operation is about to be another than was written down, as the
    /// note has changed; on disk before it returns. `notFound`: there is no pending operation.
    base::Result<base::Done> amend(std::size_t index, const NoteStep& step);

    /// The first `count` steps of the pending operation have been made, and need not be looked
    /// for in notes that others change.
    base::Result<base::Done> noteStepsMade(std::size_t count, ports::Durability durability);

    /// The pending operation has been made, and gets the next number, which is returned; it can be
    /// undone from now on. The oldest go beyond the limits; that this fails is no failure.
    base::Result<std::uint64_t> finish();

    /// Forgets the pending operation, if there is one.
    base::Result<base::Done> abandon();

    /// Forgets one that was made. One that is not there is no failure.
    base::Result<base::Done> forget(std::uint64_t number);

    /// Those that were made, the newest first, at most `most`. No journal: none. Needs no lock.
    base::Result<std::vector<Operation>> operations(std::size_t most) const;

private:
    base::Result<base::Done> append(std::string_view text, ports::Durability durability);

    /// What lies in the journal's folder.
    struct Names {
        std::vector<std::uint64_t> numbers;  ///< of those that were made, in order
        std::uint64_t highest = 0;           ///< that is or was taken
        std::vector<std::string> leftOver;   ///< what nobody needs any longer
    };

    std::string pendingFile() const { return _folder + "/pending"; }
    std::string fileOf(std::uint64_t number) const;
    base::Result<Names> names() const;
    std::optional<Operation> read(const std::string& file) const;
    void prune(const Names& names);

    const Tools _tools;
    const JournalLimits _limits;
    const std::string _root;
    const std::string _folder;
};

}  // namespace tessaly::tasks
