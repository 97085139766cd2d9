// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/services.h"
#include "base/inline_executor.h"
#include "base/thread_pool.h"
#include "platform/fixed_clock.h"
#include "platform/flock_folder_locks.h"
#include "platform/json_user_defaults.h"
#include "platform/posix_cache_files.h"
#include "platform/posix_file_changes.h"
#include "platform/posix_file_system.h"
#include "platform/system_clock.h"
#include "support/log_capture.h"
#include "support/manual_main_queue.h"
#include "support/scripted_query.h"
#include "support/temp_folder.h"

namespace tessaly::tests {

/// A machine without a sync client.
class NoDownloads final : public ports::CloudDownloads {
public:
    base::Result<ports::DownloadState> state(const std::string& file) override {
        return base::Failure{base::Failure::Kind::unavailable, file};
    }
    base::Result<base::Done> request(const std::string& file) override {
        return base::Failure{base::Failure::Kind::unavailable, file};
    }
};

/// The system's time, later: the states of files written just now have lain still for long.
class LaterClock final : public platform::SystemClock {
public:
    static constexpr std::chrono::hours ahead{1};
    base::Instant now() override { return platform::SystemClock::now() + ahead; }
};

/// A process that runs until it is asked to end, or the test ends it.
struct ScriptedJob {
    bool hasEnded = false;
    bool isAsked = false;
};

/// One user's files at one moment, with the real file system and threads below them.
class Planner {
public:
    struct User {
        std::string_view now = "2019-03-05T14:07:33";  ///< a Tuesday
        std::string locale = "en_GB";
        bool dropbox = false;
        std::optional<std::string> cloudContainer = std::nullopt;
        std::optional<std::string> dataFolder = std::nullopt;
        std::vector<ports::CloudFolder> cloudFolders = {};
        ports::WatchOutlooks watchOutlook = [](const auto&) { return ports::WatchOutlook{}; };
        ports::Trash trash = [](const std::string& file) { return intoFakeTrash(file); };
        /// As on the file systems of most disks, whatever the temporary folder is on.
        ports::TellingStamps tellingStamps = [](const std::string&) {
            return base::Result(base::Done{});
        };
        ports::TrashReturn trashReturn = {};
        std::optional<std::size_t> answer = std::nullopt;  ///< to every question
        bool isTestMode = false;
        bool isThreaded = true;  ///< else all work is done where it is posted
    };

    /// A trash that swallows files, since not every file system has one.
    static base::Result<base::Done> intoFakeTrash(const std::string& file);

    Planner() : Planner(User{}) {}
    explicit Planner(const User& user);

    /// Writes `notesIn` that text.
    void write(std::string_view notes);

    /// Writes the settings file, JSON.
    void set(std::string_view settings) { _folder.write(settingsFile, settings); }

    /// The local data folder, relative to `folder()`, as `root` begins names.
    static constexpr std::string_view root = "data/org.tessaly.tessaly/";
    static constexpr std::string_view settingsFile = "config/settings.json";

    const TempFolder& folder() const { return _folder; }
    app::Services& services() { return _services; }
    ScriptedQuery& query() { return _query; }
    ManualMainQueue& mainQueue() { return _mainQueue; }

    /// What a file of the local data folder holds; "-" where there is none.
    std::string textOf(std::string_view filename) const;

    /// The arguments of what was started in the background.
    const std::vector<std::vector<std::string>>& started() const { return _started; }

    /// Of those, the newest that is followed; null: none.
    const std::shared_ptr<ScriptedJob>& followed() const { return _followed; }

    /// What the user was asked or told, in order.
    const std::vector<ports::Question>& questions() const { return _questions; }

    /// `everything` of the folder.
    std::map<std::string, std::string> everything() const { return _folder.everything(); }

private:
    ports::FollowedJobs followedJobs();

    LogCapture _log;  // keeps diagnostics out of the tests' output
    TempFolder _folder;
    std::vector<ports::Question> _questions;
    platform::PosixFileSystem _files;
    platform::PosixFileChanges _changes;
    platform::JsonUserDefaults _defaults;
    platform::JsonUserDefaults _groupDefaults;
    platform::FixedClock _clock;
    platform::FlockFolderLocks _locks;
    base::ThreadPool _pool{3};
    base::InlineExecutor _inline;
    ScriptedQuery _query;
    ManualMainQueue _mainQueue;
    NoDownloads _downloads;
    platform::PosixCacheFiles _cacheFiles;
    LaterClock _fileClock;
    std::vector<std::vector<std::string>> _started;
    std::shared_ptr<ScriptedJob> _followed;
    app::Services _services;
};

}  // namespace tessaly::tests
