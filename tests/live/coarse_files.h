// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix_file_system.h"

namespace tessaly::tests {

/// The files of a file system whose clock stands still for a while: what is changed twice meanwhile
/// has the same dates. Those of the real one may be finer than any change.
class CoarseFiles final : public platform::PosixFileSystem {
public:
    explicit CoarseFiles(std::chrono::milliseconds tick) : _tick(tick) {}

    base::Result<std::vector<ports::SurveyedEntry>> survey(const std::string& folder) override {
        auto found = PosixFileSystem::survey(folder);
        if (!found) {
            return found;
        }
        auto all = *std::move(found);
        for (ports::SurveyedEntry& entry : all) {
            entry.stamp = coarse(entry.stamp);
        }
        return all;
    }

    base::Result<std::vector<std::optional<ports::SurveyedEntry>>> surveyNames(
        const std::string& folder, std::span<const std::string> names) override {
        auto found = PosixFileSystem::surveyNames(folder, names);
        if (!found) {
            return found;
        }
        auto all = *std::move(found);
        for (auto& entry : all) {
            if (entry) {
                entry->stamp = coarse(entry->stamp);
            }
        }
        return all;
    }

    base::Result<ports::FileContents> read(const std::string& file) override {
        auto found = PosixFileSystem::read(file);
        if (!found) {
            return found;
        }
        ports::FileContents contents = *std::move(found);
        contents.stamp = coarse(contents.stamp);
        return contents;
    }

    base::Result<base::Done> readEach(const std::string& folder,
                                      std::span<const ports::FolderEntry> files,
                                      const ports::FileSink& sink) override {
        return PosixFileSystem::readEach(folder, files, [&](const ports::FileRead& file) {
            ports::FileRead changed = file;
            ports::FileStamp stamp;
            if (file.stamp != nullptr) {
                stamp = coarse(*file.stamp);
                changed.stamp = &stamp;
            }
            sink(changed);
        });
    }

private:
    base::Instant coarse(base::Instant time) const {
        return time -
               time.time_since_epoch() % std::chrono::duration_cast<base::Instant::duration>(_tick);
    }
    ports::FileStamp coarse(ports::FileStamp stamp) const {
        for (base::Instant* time : {&stamp.modified, &stamp.changed, &stamp.created}) {
            *time = coarse(*time);
        }
        return stamp;
    }

    const std::chrono::milliseconds _tick;
};

}  // namespace tessaly::tests
