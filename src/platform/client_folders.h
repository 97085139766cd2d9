// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cloud_folders.h"

namespace tessaly::platform {

/// What one client's files say; `client` and the order of clients are the caller's business. Each
/// of these tells nothing for files that are missing or not understood, and never throws.
struct ClientFolder {
    std::string path;  ///< as the client writes it
    std::string label;
    std::string source;
    bool isPaused = false;
};
using ClientFolders = std::vector<ClientFolder>;

/// Folders into which nothing of ours would go (those that only receive) are left out.
ClientFolders syncthingFolders(const ClientHomes& homes);
ClientFolders nextcloudFolders(const ClientHomes& homes);
ClientFolders ownCloudFolders(const ClientHomes& homes);
ClientFolders dropboxFolders(const ClientHomes& homes);
ClientFolders maestralFolders(const ClientHomes& homes);
ClientFolders oneDriveFolders(const ClientHomes& homes);
ClientFolders seafileFolders(const ClientHomes& homes);
ClientFolders pCloudFolders(const ClientHomes& homes);

}  // namespace tessaly::platform
