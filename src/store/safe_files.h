// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "ports/folder_locks.h"
#include "ports/trash.h"
#include "store/change_cause.h"
#include "store/history.h"

namespace tessaly::store {

/// Changes files of a data folder so that no kill, fault or second writer loses a word: under the
/// folder's lock, with the bytes in the history first, and only if the file still is what was read.
/// Each operation first settles what a process that died left in temporary files. Logs nothing.
/// Any thread; blocks for the lock and the disk.
class SafeFiles {
public:
    struct Tools {
        ports::FileSystem& files;
        ports::FileChanges& changes;
        ports::FolderLocks& locks;
        History& history;
    };

    /// A change of a file's bytes: the new ones, nothing when they need no change, or why it cannot
    /// be made. Called again with other bytes when the file changed meanwhile, so it may depend on
    /// nothing but them.
    using Edit = std::function<base::Result<std::optional<std::string>>(std::string_view bytes)>;

    explicit SafeFiles(Tools tools) : _tools(tools) {}

    /// Edits a file below `root`. True: its bytes changed. Failures: the edit's own; `notFound`;
    /// `unavailable` when the file would not stand still. It then is as it was found.
    base::Result<bool> edit(const std::string& root, const std::string& file, const Edit& edit,
                            ChangeCause cause);

    /// Writes a new file. Failure `exists`: there is one.
    base::Result<base::Done> create(const std::string& root, const std::string& file,
                                    std::string_view bytes,
                                    ChangeCause cause = ChangeCause::created);

    /// Moves a file to the desktop's trash, its bytes in the history if they can be read and kept:
    /// it can be taken back from the trash as well. Failure: it is as it was; `unavailable`: it is
    /// a sync client's placeholder.
    base::Result<base::Done> trash(const std::string& root, const std::string& file,
                                   const ports::Trash& trash);

    /// Removes a file for good (a link: the link), its bytes in the history. With `expected`: only
    /// if it holds these bytes (`changed` else).
    base::Result<base::Done> remove(const std::string& root, const std::string& file,
                                    const std::string* expected = nullptr);

    /// Moves a file within a data folder. Failure `exists`: there is something at `to`.
    base::Result<base::Done> move(const std::string& root, const std::string& from,
                                  const std::string& to) {
        return move({root, from}, {root, to});
    }

    /// A file and the data folder that it lies in.
    struct Place {
        std::string root;
        std::string file;
    };

    /// As above, from one data folder into another, under the locks of both. Failure `unavailable`:
    /// it is a sync client's placeholder.
    base::Result<base::Done> move(const Place& from, const Place& to);

    enum class Settle { whenSomebodyDied, always };

    /// Settles what a process that died in the middle of a change below `root` left behind: the
    /// bytes of temporary files go into the history unless it knows them, then the files go.
    /// Takes no lock when it is known that nobody died; `always` looks also when nobody has looked
    /// since the machine came up.
    base::Result<base::Done> settle(const std::string& root,
                                    Settle when = Settle::whenSomebodyDied);

private:
    Tools _tools;
};

}  // namespace tessaly::store
