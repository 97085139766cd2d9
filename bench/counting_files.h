// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/posix_file_system.h"

namespace tessaly::bench {

/// The file system, and how many folders of it were looked at as a whole.
class CountingFiles final : public ports::FileSystem {
public:
    std::size_t surveys() const { return _surveys; }

    base::Result<std::vector<ports::FolderEntry>> list(const std::string& folder) override {
        return _files.list(folder);
    }
    base::Result<std::vector<ports::SurveyedEntry>> survey(const std::string& folder) override {
        ++_surveys;
        return _files.survey(folder);
    }
    base::Result<std::vector<std::optional<ports::SurveyedEntry>>> surveyNames(
        const std::string& folder, std::span<const std::string> names) override {
        return _files.surveyNames(folder, names);
    }
    base::Result<ports::FileContents> read(const std::string& file) override {
        return _files.read(file);
    }
    base::Result<base::Done> readEach(const std::string& folder,
                                      std::span<const ports::FolderEntry> files,
                                      const ports::FileSink& sink) override {
        return _files.readEach(folder, files, sink);
    }
    base::Result<ports::FolderEntry::Kind> kindOf(const std::string& path) override {
        return _files.kindOf(path);
    }
    base::Result<std::string> resolve(const std::string& path) override {
        return _files.resolve(path);
    }

private:
    platform::PosixFileSystem _files;
    std::atomic<std::size_t> _surveys = 0;
};

}  // namespace tessaly::bench
