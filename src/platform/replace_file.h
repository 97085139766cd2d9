// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "platform/folder_names.h"
#include "ports/file_system.h"

namespace tessaly::platform {

/// Puts `bytes` in the place of a file if that still is what `read` tells; see
/// ports::FileChanges::replace. The new file and the old one change names, so that whatever another
/// program put there in the last moment comes out and can be put back. Where `exchange` is not
/// supported, the new file is renamed over the old one.
base::Result<base::Done> replaceIfStill(const std::string& file, const ports::FileContents& read,
                                        std::string_view bytes,
                                        const ChangeNames& exchange = exchangeNames);

}  // namespace tessaly::platform
