// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "ports/cloud_folders.h"

namespace tessaly::platform {

/// Where clients keep their files: this user's folders, absolute.
struct ClientHomes {
    std::string home;
    std::string config;  ///< $XDG_CONFIG_HOME or its default
    std::string state;   ///< $XDG_STATE_HOME or its default
};

/// Of the environment now.
ClientHomes clientHomes();

/// What the files of the sync clients below these folders say.
ports::CloudFolders cloudFoldersOf(ClientHomes homes);

}  // namespace tessaly::platform
