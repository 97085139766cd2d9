// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string_view>

namespace tessaly::platform {

/// Calls `found` with the name of each folder in an open folder; links are no folders. Returns 0,
/// or the error's number when it could not be listed to its end.
int forEachSubfolder(int folder, const std::function<void(std::string_view name)>& found);

}  // namespace tessaly::platform
