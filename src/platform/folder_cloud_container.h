// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "ports/cloud_container.h"

namespace tessaly::platform {

/// The cloud drive that is a folder the user names: `folderSetting` is asked at each look-up, on
/// the asking thread. It gives the absolute path of a folder, or one below "~/"; there is no cloud
/// drive while it gives another text or names no folder that exists.
ports::CloudContainer folderCloudContainer(std::function<std::string()> folderSetting);

}  // namespace tessaly::platform
