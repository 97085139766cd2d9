// SPDX-License-Identifier: MIT
#include "sync/cloud_sync.h"

#include <utility>

#include "base/log.h"

namespace tessaly::sync {

CloudSync::CloudSync(Tools tools)
    : _tools(std::move(tools)),
      cloudQuery(_tools.cloudQuery),
      _downloads(_tools.downloads),
      currentNotesQueue(_tools.store.bundleIdentifier() + ".CloudSync.currentNotesQueue",
                        _tools.executor),
      semaphore(_tools.executor) {}

CloudSync::~CloudSync() {
    _isAlive.reset();
    _tools.mainQueue.cancel(_refresh);
    _tools.mainQueue.cancel(delayedUpdateTime);
    semaphore.close();
    if (_isStarted) {
        cloudQuery.stop();
    }
}

void CloudSync::start() {
    if (_tools.isTestMode || _isStarted || !_tools.store.root().starts_with('/')) {
        return;
    }
    _isStarted = true;
    beginWith(resolvedRoot());
    _refresh = _tools.mainQueue.every(refreshInterval, whileAlive([this] { requestUpdate(); }));
    requestUpdate();
}

void CloudSync::addListener(store::CloudSyncListener listener) {
    listeners.push_back(std::move(listener));
}

void CloudSync::onUpdate() {
    requestUpdate();
}

void CloudSync::requestUpdate() {
    if (!_tools.isTestMode) {
        _tools.mainQueue.post(whileAlive([this] { restartDebounce(); }));
    }
}

bool CloudSync::isCloudAvailable() const {
    const auto cloudRoot = _tools.store.cloudRoot();
    return cloudRoot && *cloudRoot == _tools.store.root();
}

CloudSync::Watching CloudSync::watching() {
    ports::WatchState state = cloudQuery.state();
    const std::scoped_lock lock(_mutex);
    if (_queryFailure) {
        state = {false, 0, ports::WatchState::Cause::noEvents, _queryFailure->description, {""}};
    }
    return {std::move(state), _pollInterval};
}

void CloudSync::setOnWatchingChanged(std::function<void()> onChanged) {
    _onWatchingChanged = std::move(onChanged);
}

// Both the jobs and the end of this object are the main thread's.
ports::MainQueue::Job CloudSync::whileAlive(ports::MainQueue::Job job) {
    return [isAlive = _token, job = std::move(job)] {
        if (!isAlive.expired()) {
            job();
        }
    };
}

void CloudSync::restartDebounce() {
    if (!_isStarted) {
        return;
    }
    base::logRoutine("onUpdate");
    _debounce.request(_tools.mainQueue.now());
    waitForQuiet();
}

void CloudSync::waitForQuiet() {
    _tools.mainQueue.cancel(delayedUpdateTime);
    delayedUpdateTime = 0;
    if (const auto due = _debounce.due()) {
        delayedUpdateTime = _tools.mainQueue.after(*due - _tools.mainQueue.now(),
                                                   whileAlive([this] { fireDebounce(); }));
    }
}

void CloudSync::fireDebounce() {
    delayedUpdateTime = 0;
    if (!_debounce.fire(_tools.mainQueue.now())) {
        waitForQuiet();
        return;
    }
    base::logRoutine("received an icloud update");
    // A batch that waits for its turn answers this request, too.
    if (!_isBatchWaiting.exchange(true)) {
        semaphore.enter([this] { processBatch(); });
    }
}

}  // namespace tessaly::sync
