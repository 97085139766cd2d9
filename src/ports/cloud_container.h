// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tessaly::ports {

/// The folder that a sync client keeps in step with the user's other devices, asked for anew at
/// each look-up: a sync client may come and go. Nothing: no cloud drive. Any thread.
using CloudContainer = std::function<std::optional<std::string>()>;

/// Whether a Dropbox account is linked now. While one is, the cloud drive is not asked for. Any
/// thread.
using DropboxAuthorised = std::function<bool()>;

}  // namespace tessaly::ports
