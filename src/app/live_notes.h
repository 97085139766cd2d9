// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

#include "app/migration.h"
#include "app/services.h"
#include "ports/main_queue.h"
#include "store/cloud_note.h"
#include "store/note_cache.h"

namespace tessaly::app {

/// What a program that stays does with the notes: holds all of them in memory, keeps them as others
/// change them, counts them anew when a setting has changed, and offers once to move them into the
/// cloud drive. One at a time for some `Services`; all of it on the main queue.
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
        /// The user has been offered to move the notes.
        std::function<void(const OfferResult& result)> onMigration;
    };

    static constexpr std::chrono::seconds settingsInterval{5};

    /// `services` outlives this object.
    LiveNotes(Services& services, Handlers handlers);
    /// Ends the watcher and waits for the work in hand, a load included; no handler is called any
    /// more.
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
    void keepIndex();
    bool isWatched();
    void lookAtSettings();
    void offer();

    Services& _services;
    const Handlers _handlers;
    ports::MainQueue& _mainQueue;
    ports::MainQueue::Timer _readyTimer = 0;
    ports::MainQueue::Timer _settingsTimer = 0;
    bool _isReady = false;
    std::atomic<bool> _wasAllTold = false;
    /// Gone with this object, so that jobs that are still posted know.
    std::shared_ptr<const bool> _alive = std::make_shared<bool>(true);
};

}  // namespace tessaly::app
