// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/failure.h"
#include "ports/file_system.h"
#include "ports/folder_locks.h"
#include "store/leftovers.h"

namespace tessaly::store {

/// The time for which the lock of a data folder is held to make one change below it. At its start,
/// what processes that died have left is settled.
class ChangeSession {
public:
    ChangeSession(Leftovers::Tools tools, const std::string& root,
                  std::unique_ptr<ports::FolderLock> lock);

    /// Remembers, beyond our death, a folder in which temporary files are about to lie.
    base::Result<base::Done> begin(const std::string& folder);

    /// As `begin`, for a write of a file: where it is a link, the folder of the file that it leads
    /// to, too.
    base::Result<base::Done> beginWrite(const std::string& file);

    /// Passes on how a change in a begun folder went: one that failed may have left another
    /// program's bytes there.
    base::Result<base::Done> noted(base::Result<base::Done> outcome);

    /// The change is over, well or not. Failure: something is left over; it waits for the next
    /// session.
    base::Result<base::Done> end();

private:
    void settle(const std::string& folder, const std::string& root, const std::string& resolved);
    void add(const base::Result<base::Done>& settled);

    ports::FileSystem& _files;
    Leftovers _leftovers;
    const std::unique_ptr<ports::FolderLock> _lock;
    base::Result<base::Done> _settled = base::Done{};
    std::vector<std::string> _begun;
    bool _hasFailed = false;
};

}  // namespace tessaly::store
