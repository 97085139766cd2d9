// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/posix_file_system.h"
#include "store/data_store.h"
#include "support/temp_folder.h"

namespace tessaly::tests {

/// A data folder called "data" with room beside it.
struct StoreFixture {
    TempFolder folder;
    platform::PosixFileSystem files;
    std::string root = folder / "data";
    store::DataStore store{files,
                           {.folders = {},
                            .bundleIdentifier = {},
                            .dropboxAuthorised = {},
                            .cloudContainer = {},
                            .dataFolder = root}};
};

}  // namespace tessaly::tests
