// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tessaly::ports {

/// A folder that a sync client says it keeps in step with other devices.
struct CloudFolder {
    std::string client;  ///< as its maker writes it: "Nextcloud"
    std::string path;    ///< absolute, without a slash at the end; need not exist
    std::string label;   ///< the client's name for this folder; may be empty
    std::string source;  ///< the file that says so, absolute
    bool isPaused = false;

    bool operator==(const CloudFolder&) const = default;
};

/// What the sync clients' own files say, each path once, in the order of a fixed list of clients.
/// These files are only read. One that is missing, cannot be read or is not understood tells
/// nothing. Any thread; blocks for the disk.
using CloudFolders = std::function<std::vector<CloudFolder>()>;

}  // namespace tessaly::ports
