// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "store/history.h"
#include "store/safe_files.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"
#include "sync/file_versions.h"

namespace tessaly::tests {

using Texts = std::vector<std::string>;

/// A data folder with notes of which there are several versions.
struct VersionsFixture {
    TempFolder folder;
    platform::PosixFileSystem files;
    platform::PosixFileChanges changes;
    platform::FlockFolderLocks locks{folder / "locks"};
    platform::FixedClock clock{platform::parseTime("2019-03-05T14:07:33").value()};
    FailingFiles failing{files, changes, locks};
    store::History history{{failing, failing, failing, clock}, folder / "history"};
    store::SafeFiles safe{{failing, failing, failing, history}};
    std::string root = folder.mkdir("data");
    std::string note = folder.mkdir("data/Notes") + "/Plans.md";
    sync::FileVersions versions{{failing, safe, root}};

    /// Writes a version of a note that is `minutes` old; returns its path.
    std::string write(std::string_view name, std::string_view text, int minutes = 0) {
        const std::string file = folder.write("data/Notes/" + std::string(name), text);
        std::filesystem::last_write_time(
            file, std::filesystem::file_time_type::clock::now() - std::chrono::minutes(minutes));
        return file;
    }

    Texts names() const { return folder.names("data/Notes"); }

    Texts keptTexts() {
        Texts texts;
        const std::vector<store::HistoryEntry> entries = history.entries().value();
        for (const store::HistoryEntry& entry : entries) {
            texts.push_back(history.text(entry).value());
        }
        return texts;
    }

    bool isKept(const std::string& text) {
        const Texts texts = keptTexts();
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }

    /// Whether some file of the notes, or the history, has this text.
    bool isSafe(const std::string& text) {
        const auto all = folder.everything("data/Notes");
        return isKept(text) || std::any_of(all.begin(), all.end(),
                                           [&](const auto& file) { return file.second == text; });
    }
};

}  // namespace tessaly::tests
