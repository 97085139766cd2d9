// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/executor.h"
#include "base/failure.h"
#include "base/gate.h"
#include "base/note_type.h"
#include "base/serial_queue.h"
#include "base/thread_annotations.h"
#include "ports/clock.h"
#include "ports/cloud_downloads.h"
#include "ports/main_queue.h"
#include "ports/metadata_query.h"
#include "store/cached_notes.h"
#include "store/cloud_note.h"
#include "store/data_store.h"
#include "sync/current_notes.h"
#include "sync/debounce.h"
#include "sync/download_requests.h"
#include "sync/looks.h"
#include "sync/rescan_plan.h"
#include "sync/survey.h"

namespace tessaly::sync {

/// What is held of a note; nothing when it is not known. Any thread.
using KnownText =
    std::function<std::optional<store::KnownText>(base::NoteType type, std::string_view filename)>;

/// Watches the data folder and tells its listeners in batches what others have changed there. A
/// burst of events is one batch, a second after the last of them; every five seconds it looks
/// whether anything is left over, and now and then at everything, for events can be lost.
///
/// Only reads. Events are hints: what has changed is told by looking at the files and comparing
/// with `_currentNotes`. A folder that cannot be looked at for another reason than that it is gone
/// stays as it was. A root that is gone is told as the deletion of all in it, one that comes back
/// as a first batch is. Created and destroyed on the main thread; the data store's root is asked
/// for at each batch, and when it is another one, everything begins again with that.
class CloudSync {
public:
    /// All outlive this object.
    struct Tools {
        store::DataStore& store;
        ports::MetadataQuery& cloudQuery;
        ports::MainQueue& mainQueue;
        ports::CloudDownloads& downloads;
        ports::Clock& clock;
        base::Executor& executor;
        KnownText knownText;
        bool isTestMode = false;  ///< the environment holds "TEST_MODE", be it empty
    };

    static constexpr std::chrono::seconds quietTime{1};
    static constexpr std::chrono::seconds longestDelay{5};
    static constexpr std::chrono::seconds refreshInterval{5};
    /// The days, from today on, that the first batch tells ahead of the rest.
    static constexpr int daysAhead = 10;

    explicit CloudSync(Tools tools);
    /// Stops, and waits for the batch in hand.
    ~CloudSync();

    /// Begins to watch, and requests one update. Does nothing in test mode or without a data
    /// folder. Main queue. Failure: there are no events at all, as `watching` tells; then it polls.
    void start();

    /// Main queue, before `start`. Listeners are called in the order in which they were added, on
    /// the thread that made the batch; one that blocks holds the next batch up.
    void addListener(store::CloudSyncListener listener);

    /// The query's handler. Any thread. Requests an update.
    void onUpdate();

    /// Logs "onUpdate" and restarts the debounce, on the main queue. When that fires, logs
    /// "received an icloud update" and works on the batch on the executor. Any thread.
    void requestUpdate();

    /// The data folder is in the cloud drive.
    bool isCloudAvailable() const;
    /// No batch has been worked on yet. Any thread.
    bool isFirstLoad() const { return _isFirstLoad; }

    /// How the folder is watched, and how long the pause between two looks is where it is not.
    struct Watching {
        ports::WatchState state;
        std::chrono::nanoseconds pollInterval{};
    };
    Watching watching();
    /// Called on the main queue when `watching().state.cause` has become another one.
    void setOnWatchingChanged(std::function<void()> onChanged);

private:
    /// A job of the main queue that does nothing once this object is gone. Any thread.
    ports::MainQueue::Job whileAlive(ports::MainQueue::Job job);

    // On the main queue.
    void restartDebounce();
    void waitForQuiet();
    void fireDebounce();

    // Holding `semaphore`, or before there is a batch.
    struct Due {
        Looks looks;
        bool isPoll = false;
        bool areDownloadsDue = false;
    };
    void processBatch();
    std::string resolvedRoot();
    std::uint64_t inodeOf(const std::string& root);
    bool isAnotherFolder(const std::string& root);
    void beginWith(std::string root);
    void leaveRoot();
    bool canLook();
    void work();
    Due whatIsDue(const Survey& survey, RescanPlan::Time now);
    void addPolled(const Survey& survey, Looks& looks);
    void noteTime(const Due& due, RescanPlan::Time began);
    void deliverNextDays(const Survey& survey);
    void deliverFirst(std::vector<store::CloudNote> notes);
    CurrentNotes::Differences compareWithHeld(const Survey& survey, Survey::Found found,
                                              base::Instant lookedAt);
    CurrentNotes::Differences apply(Survey::Found&& found, base::Instant lookedAt);
    void noteFailures(const Survey::Found& found);
    std::vector<store::CloudNote> trulyChanged(std::vector<store::CloudNote> doubtful);
    bool hasOtherText(const store::CloudNote& note);
    void deliverLater(std::vector<store::CloudNote> notes);
    void deliver(const store::CloudBatch& batch);
    void askForDownloads(const CurrentNotes::Differences& differences, const Due& due);
    void checkWatching();

    const Tools _tools;
    ports::MetadataQuery& cloudQuery;
    std::vector<store::CloudSyncListener> listeners;  ///< constant once started

    // The main queue's.
    std::shared_ptr<const bool> _isAlive = std::make_shared<const bool>(true);
    const std::weak_ptr<const bool> _token = _isAlive;  ///< may be copied on any thread
    bool _isStarted = false;
    Debounce _debounce{quietTime, longestDelay};
    ports::MainQueue::Timer delayedUpdateTime = 0;
    ports::MainQueue::Timer _refresh = 0;
    std::function<void()> _onWatchingChanged;

    // Any thread's.
    std::atomic<bool> _isFirstLoad = true;
    std::atomic<bool> _isBatchWaiting = false;
    std::atomic<std::chrono::nanoseconds> _pollInterval{RescanPlan().pollInterval()};
    std::mutex _mutex;  ///< guards the next
    std::optional<base::Failure> _queryFailure;

    // Of who holds `semaphore`.
    std::string _root;             ///< as far as it could be resolved
    std::uint64_t _rootInode = 0;  ///< 0: not known
    bool _isRootThere = false;
    RescanPlan _rescans;
    DownloadRequests _downloads;
    bool _areDownloadsLeft = false;
    std::set<std::string> _failing;  ///< folders that cannot be looked at, and have been logged
    ports::WatchState::Cause _toldCause = ports::WatchState::Cause::none;

    base::SerialQueue currentNotesQueue;  ///< ".CloudSync.currentNotesQueue"
    CurrentNotes _currentNotes TESSALY_GUARDED_BY(currentNotesQueue);

    base::Gate semaphore;  ///< held by the batch in hand
};

}  // namespace tessaly::sync
