// SPDX-License-Identifier: MIT
#pragma once

#include "ports/file_system.h"

namespace tessaly::platform {

/// The kernel's files. Stateless; each thread keeps one buffer for reading between calls. A path
/// that holds a NUL byte is `malformed`.
class PosixFileSystem : public ports::FileSystem {
public:
    base::Result<std::vector<ports::FolderEntry>> list(const std::string& folder) override;
    base::Result<std::vector<ports::SurveyedEntry>> survey(const std::string& folder) override;
    base::Result<std::vector<std::optional<ports::SurveyedEntry>>> surveyNames(
        const std::string& folder, std::span<const std::string> names) override;
    base::Result<ports::FileContents> read(const std::string& file) override;

    /// The kind that an entry carries is believed: one that is no file is refused unopened.
    base::Result<base::Done> readEach(const std::string& folder,
                                      std::span<const ports::FolderEntry> files,
                                      const ports::FileSink& sink) override;
    base::Result<ports::FolderEntry::Kind> kindOf(const std::string& path) override;
    base::Result<std::string> resolve(const std::string& path) override;
};

}  // namespace tessaly::platform
