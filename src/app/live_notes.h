// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "app/long_work.h"
#include "app/migration.h"
#include "app/services.h"
#include "base/serial_queue.h"
#include "ports/main_queue.h"
#include "store/cloud_note.h"
#include "store/data_store.h"
#include "store/note_cache.h"

namespace tessaly::app {

/// What a program that stays does with the notes: holds all of them in memory, keeps them as others
/// change them, counts them anew when a setting has changed, and offers once to move them into the
/// cloud drive, which is done in the background, as the start-up index is written by a process of
/// its own. One at a time for some `Services`; all of it on the main queue.
class LiveNotes {
public:
    /// Called on the main queue; each may be empty.
    struct Handlers {
        /// All notes are loaded, and whatever changes from now on is told; there may also be no
        /// data folder, and what lies in it when it comes is not told. Once.
        std::function<void()> onReady;
        /// What others have changed, when the cache has taken it in; of the first batches none, but
        /// all that is there when the data folder has become another one, or comes back.
        std::function<void(const store::CloudBatch& batch)> onBatch;
        /// `CloudSync::watching` tells another cause.
        std::function<void()> onWatchingChanged;
        /// The user has been offered to move the notes, and what was to be moved has been.
        std::function<void(const OfferResult& result)> onMigration;
        /// Work that the user may wait for has begun, and ended.
        std::function<void(const std::shared_ptr<LongWork>& work)> onWork = {};
        std::function<void(const std::shared_ptr<LongWork>& work)> onWorkEnded = {};
    };

    static constexpr std::chrono::seconds settingsInterval{5};
    static constexpr std::chrono::milliseconds indexInterval{200};  ///< between looks at its writer

    /// `services` outlives this object.
    LiveNotes(Services& services, Handlers handlers);
    /// Ends the watcher and waits for the work in hand, a load included; no handler is called any
    /// more. A move of the notes ends with the file that is being moved; a process that writes the
    /// index runs on.
    ~LiveNotes();
    LiveNotes(const LiveNotes&) = delete;
    LiveNotes& operator=(const LiveNotes&) = delete;

    /// Starts to load and to watch, and returns. Once.
    void start(store::NoteCache::LoadOptions options = {});

private:
    bool isNews(store::CloudBatch::Kind kind);
    void receive(const store::CloudBatch& batch);
    void tellIfReady();
    void afterWork(std::function<void()> told);
    void inBackground(std::function<std::function<void()>()> work);
    void keepIndex();
    void followIndex(std::shared_ptr<ports::FollowedJob> job);
    bool isWatched();
    void lookAtSettings();
    void offer();
    void migrateNotes();
    void migrated(const std::shared_ptr<LongWork>& work, const store::MoveReport& report);
    void tellOfMigration(const OfferResult& result);
    void begin(const std::shared_ptr<LongWork>& work);
    void end(const std::shared_ptr<LongWork>& work);

    Services& _services;
    const Handlers _handlers;
    ports::MainQueue& _mainQueue;
    ports::MainQueue::Timer _readyTimer = 0;
    ports::MainQueue::Timer _settingsTimer = 0;
    ports::MainQueue::Timer _indexTimer = 0;
    std::shared_ptr<LongWork> _migration;  ///< null: none is under way
    bool _isReady = false;
    std::atomic<bool> _wasAllTold = false;
    /// Gone with this object, so that jobs that are still posted know.
    std::shared_ptr<const bool> _alive = std::make_shared<bool>(true);
    base::SerialQueue _queue;
};

}  // namespace tessaly::app
