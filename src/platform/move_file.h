// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/failure.h"
#include "platform/folder_names.h"

namespace tessaly::platform {

/// Gives a file another path where nothing is; see ports::FileChanges::move. `rename` is
/// giveFreeName.
base::Result<base::Done> moveFile(const std::string& from, const std::string& to,
                                  const ChangeNames& rename = giveFreeName);

}  // namespace tessaly::platform
