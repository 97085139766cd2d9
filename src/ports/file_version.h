// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/day.h"

namespace tessaly::ports {

/// One version of a file of which a sync client holds several.
struct FileVersion {
    std::string url;  ///< absolute path: of the current version the file itself, else of a copy
    base::Instant modificationDate{};
    /// The device or user that wrote this version, as the client's name for it tells; may be empty.
    std::string localizedNameOfSavingComputer;
    bool isConflict = false;  ///< it is not the current version
    bool isResolved = false;
    std::string client;  ///< whose copy it is, English: "Syncthing"; empty for the current version

    bool operator==(const FileVersion&) const = default;
};

}  // namespace tessaly::ports
