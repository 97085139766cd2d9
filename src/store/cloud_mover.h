// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/failure.h"
#include "store/data_store.h"

namespace tessaly::store {

/// What is below a data folder, by paths relative to it, in order of names.
struct FolderTree {
    std::vector<std::string> files;
    std::vector<std::string> folders;  ///< each before those in it; the data folder itself is ""
    std::vector<MoveReport::Failed> staying;
};

/// Moves files from the local data folder to the cloud drive's. Used within turns of the data
/// store.
class CloudMover {
public:
    /// The tools outlive it.
    CloudMover(const DataStore::Tools& tools, std::string localRoot, std::string cloudRoot)
        : _tools(tools), _local(std::move(localRoot)), _cloud(std::move(cloudRoot)) {}

    /// Everything to be moved. A folder that cannot be listed is logged as "Failed to move all
    /// files to cloud: ", and stays.
    FolderTree tree() const;

    /// Whether the cloud folder is the local one, where a file would be taken for its own double,
    /// or lies in it, so that moving would never end.
    bool isCloudInLocal() const;

    /// Moves a file, given by its relative path, and returns the one it has there. Logs failures.
    base::Result<std::string> move(const std::string& relative) const;

    /// Removes local folders that are empty, and sees to it that they are in the cloud.
    void moveEmptyFolders(const std::vector<std::string>& folders) const;

private:
    base::Result<std::string> regularFile(const std::string& relative) const;
    bool hasCloudFolder(const std::string& relative) const;
    base::Result<std::string> moveUnderFreeName(const std::string& from,
                                                const std::string& wanted) const;

    const DataStore::Tools& _tools;
    const std::string _local;
    const std::string _cloud;
};

}  // namespace tessaly::store
