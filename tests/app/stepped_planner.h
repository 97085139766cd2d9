// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "app/planner.h"
#include "base/manual_executor.h"
#include "support/failing_files.h"

namespace tessaly::tests {

/// One user's real files, of which each access can be made to fail, and jobs that a test steps. All
/// on the test's thread.
class SteppedPlanner {
public:
    explicit SteppedPlanner(unsigned seed = 1) : _engine(seed) {}

    std::optional<std::string> cloudContainer;
    std::optional<std::size_t> answer;  ///< to every question

    app::Services& services() { return _services; }
    const TempFolder& folder() const { return _folder; }
    FailingFiles& files() { return _failing; }
    ManualMainQueue& mainQueue() { return _mainQueue; }
    base::ManualExecutor::Engine& engine() { return _engine; }

    /// A number below `end`, drawn from the seed.
    std::size_t draw(std::size_t end) { return static_cast<std::size_t>(_engine() % end); }

    /// Runs one waiting job; false: none waits.
    bool step() { return _executor.step(_engine); }

    /// Lets time pass, and all be done that is due then.
    void pass(std::chrono::milliseconds time) {
        _mainQueue.advance(time);
        settle();
    }
    /// Runs all jobs and all that they post.
    void settle() {
        do {
            _executor.runAll(_engine);
        } while (_mainQueue.runPosted() > 0 || _executor.waiting() > 0);
    }

    std::string path(std::string_view filename) const {
        return std::string{Planner::root}.append(filename);
    }
    void write(std::string_view filename, std::string_view bytes) {
        _folder.write(path(filename), bytes);
    }
    /// "-" where there is none.
    std::string textOf(std::string_view filename) const {
        return _folder.exists(path(filename)) ? _folder.read(path(filename)) : "-";
    }
    /// Every text that the history holds, one behind the other.
    std::string history() const {
        std::string all;
        if (_folder.exists("state/history/texts")) {
            for (const auto& [name, bytes] : _folder.everything("state/history/texts")) {
                all += bytes + "\n";
            }
        }
        return all;
    }
    const LogCapture& log() const { return _log; }

private:
    LogCapture _log;
    base::ManualExecutor::Engine _engine;
    TempFolder _folder;
    platform::PosixFileSystem _files;
    platform::PosixFileChanges _changes;
    platform::FlockFolderLocks _locks{_folder / "locks"};
    FailingFiles _failing{_files, _changes, _locks};
    platform::JsonUserDefaults _defaults{_folder / Planner::settingsFile};
    platform::JsonUserDefaults _groupDefaults{_folder / "config/group.json"};
    platform::FixedClock _clock{platform::parseTime(Planner::User{}.now).value()};
    base::ManualExecutor _executor;
    ScriptedQuery _query;
    ManualMainQueue _mainQueue;
    NoDownloads _downloads;
    platform::PosixCacheFiles _cacheFiles;
    LaterClock _fileClock;
    app::Services _services{
        {_failing,
         _failing,
         _failing,
         _defaults,
         _groupDefaults,
         _clock,
         _executor,
         _query,
         _mainQueue,
         _downloads,
         _cacheFiles,
         _fileClock,
         Planner::User{}.tellingStamps,
         [](const auto&) { return base::Result<base::Done>(base::Done{}); },
         [] { return std::vector<ports::CloudFolder>{}; },
         Planner::User{}.watchOutlook,
         {_folder / "data", _folder / "config", _folder / "state", _folder / "cache"},
         {"en_GB", ""},
         [] { return false; },
         [this] { return cloudContainer; },
         Planner::User{}.trash,
         [this](const ports::Question&) { return answer; },
         std::nullopt,
         false}};
};

}  // namespace tessaly::tests
