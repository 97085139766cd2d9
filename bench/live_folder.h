// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "counting_files.h"
#include "data_folder.h"
#include "moment.h"
#include "platform/inotify_query.h"
#include "skipping_main_queue.h"
#include "store/note_cache.h"
#include "sync/cloud_sync.h"
#include "timed_executor.h"

namespace tessaly::bench {

/// A data folder whose notes are held in memory and watched, as the program does it, but for the
/// waiting: the second of quiet behind a change is skipped. One thread, the main one.
class LiveFolder final : private store::CacheListener {
public:
    /// Loads all, and returns when nothing is left to do.
    explicit LiveFolder(const std::string& root);
    ~LiveFolder() override;

    TimedExecutor& executor() { return _executor; }
    CountingFiles& files() { return _files; }
    const store::NoteCache& cache() const { return _cache; }
    std::string pathOf(std::string_view filename) const;
    std::size_t watchedFolders() { return _query.state().watchedFolders; }

    /// To be called before general notes are changed: by these names.
    void expect(std::set<std::string> filenames);
    /// Waits until the change of a file has been noticed, and no further one for a while.
    void waitUntilNoticed(std::chrono::milliseconds quiet);
    /// Makes the batch. What passes from when it was begun to when this thread, told by the
    /// cache's listener, has a snapshot in hand that holds all that was expected; nothing: that
    /// never came.
    std::optional<Taken> batch();

    /// Looks at all folders, from when that is begun to when no thread is at work.
    Taken rescan();

    /// Returns when no work is in hand and no job is posted.
    void settle();

private:
    void cacheChanged(const store::CacheChanges& changes) override;
    sync::CloudSync::Tools syncTools();
    /// Skips time until the batch has been handed to the pool.
    void fire();

    CountingFiles _files;
    TimedExecutor _executor;
    DataFolder _folder;
    SkippingMainQueue _mainQueue;
    platform::InotifyQuery _query;

    struct NoClient final : ports::CloudDownloads {
        base::Result<ports::DownloadState> state(const std::string& file) override;
        base::Result<base::Done> request(const std::string& file) override;
    } _downloads;

    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _changed;
    std::set<std::string> _expected;

    store::NoteCache _cache;
    sync::CloudSync _sync;
};

}  // namespace tessaly::bench
