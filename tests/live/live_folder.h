// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "base/thread_pool.h"
#include "live/listened_query.h"
#include "live/told_notes.h"
#include "live/tracked_executor.h"
#include "platform/inotify_query.h"
#include "platform/system_clock.h"
#include "store/note_cache.h"
#include "store/store_fixture.h"
#include "support/manual_main_queue.h"
#include "sync/cloud_sync.h"

namespace tessaly::tests {

/// A data folder that is watched and held in memory: files, events and threads are real, only the
/// main queue's time passes when told.
class LiveFolder {
public:
    explicit LiveFolder(platform::WatchOptions options = {});
    ~LiveFolder();
    LiveFolder(const LiveFolder&) = delete;
    LiveFolder& operator=(const LiveFolder&) = delete;

    const TempFolder& folder() const { return _store.folder; }
    ListenedQuery& query() { return _query; }
    const store::NoteCache& cache() const { return *_cache; }
    const ToldNotes& told() const { return _told; }

    store::DataStore& store() { return _store.store; }
    base::Executor& executor() { return _executor; }

    /// Cache and watcher end, and are made anew; they are to be started then.
    void restart(std::shared_ptr<const store::NoteIndex> index);

    bool load();
    /// False: the first batch does not come about.
    bool watch();
    bool start() { return load() && watch(); }

    /// Lets time pass until some work begins, and does not wait for its end.
    void begin();

    /// Makes one more file and waits until events have brought it, and so all that was changed
    /// before it, and nothing is left to do. False: that does not come about.
    bool settle();
    /// The same by nothing but letting time pass.
    bool settleByLooking();

    /// How the cache differs from one that is loaded now, without an index; empty: not at all.
    std::string cacheDifferenceFromDisk();
    /// That, and how what was told does.
    std::string differenceFromDisk();

private:
    /// Lets time pass until the batches that are due have been worked on.
    bool work(std::chrono::nanoseconds time);
    void mark();
    bool isMarkTold() const;
    store::NoteCache::Tools cacheTools(std::shared_ptr<const store::NoteIndex> index = nullptr);
    void make(std::shared_ptr<const store::NoteIndex> index);

    StoreFixture _store;
    platform::SystemClock _clock;  ///< files that are just being written are known by it
    base::ThreadPool _pool{2};
    TrackedExecutor _executor{_pool};
    ManualMainQueue _mainQueue;
    platform::InotifyQuery _inotify;
    ListenedQuery _query{_inotify};
    ToldNotes _told;
    std::unique_ptr<store::NoteCache> _cache;
    std::unique_ptr<sync::CloudSync> _sync;
    std::size_t _marks = 0;
    std::string _mark;  ///< the newest, absolute
};

}  // namespace tessaly::tests
