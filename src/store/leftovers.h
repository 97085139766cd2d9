// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "store/history.h"

namespace tessaly::store {

/// What writes that did not end have left in temporary files. Their bytes go into the history, as a
/// text of the file that they were meant for, unless it knows them; then they go, and so do links
/// that are left. Whoever settles a
/// folder holds the lock of its data folder, so that no write is on its way. Goes on where one
/// cannot be settled; the failure is the first.
class Leftovers {
public:
    struct Tools {
        ports::FileSystem& files;
        ports::FileChanges& changes;
        History& history;
    };

    explicit Leftovers(Tools tools) : _tools(tools) {}

    /// Settles the files that lie in the folder itself. One that is gone is no failure.
    base::Result<base::Done> settleFolder(const std::string& folder);

    /// Settles a folder and all below it but hidden folders and what links lead to.
    base::Result<base::Done> settleTree(const std::string& folder);

    /// Settles a data folder: its own files and the folders of all kinds of notes.
    base::Result<base::Done> settleRoot(const std::string& root);

private:
    enum class Depth { folder, tree };
    base::Result<base::Done> settle(const std::string& folder, Depth depth);
    base::Result<base::Done> settleEntry(ports::FolderEntry::Kind kind, const std::string& path,
                                         const std::string& target);
    base::Result<base::Done> settleFile(const std::string& file, const std::string& target);
    bool isKnown(const std::string& target, std::string_view bytes) const;

    const Tools _tools;
};

}  // namespace tessaly::store
