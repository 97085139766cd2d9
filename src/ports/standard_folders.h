// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tessaly::ports {

/// The folders of this user, fixed at start; none need exist. Absolute, without a slash at the end.
struct StandardFolders {
    std::string data;    ///< programs' data: the local data folder lies in it
    std::string config;  ///< this program's settings
    std::string state;   ///< this program's state: history, usage log
    std::string cache;   ///< this program's cache: may be deleted at any time
};

}  // namespace tessaly::ports
