// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/log.h"
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

/// Gathers what is logged while it lives.
class LogLines {
public:
    LogLines()
        : _previous(base::setLogSink([this](std::string_view line) { lines.emplace_back(line); })) {
    }
    ~LogLines() { base::setLogSink(_previous); }
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    std::vector<std::string> lines;

private:
    base::LogSink _previous;
};

}  // namespace tessaly::tests
