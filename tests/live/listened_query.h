// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <random>
#include <utility>
#include <vector>

#include "ports/metadata_query.h"

namespace tessaly::tests {

/// Passes on what a query notices, all of it or not, and lets the test wait until it has.
class ListenedQuery final : public ports::MetadataQuery {
public:
    explicit ListenedQuery(ports::MetadataQuery& query) : _query(query) {}

    /// Lets so many hints of a hundred be lost from now on.
    void lose(unsigned percent) { _lost = percent; }

    /// Waits until the query has told of something since this was last called. False: it has not
    /// within a time that is long for any machine.
    bool waitForUpdate() {
        std::unique_lock lock(_mutex);
        const bool isTold =
            _updated.wait_for(lock, std::chrono::minutes(1), [this] { return _isUpdated; });
        _isUpdated = false;
        return isTold;
    }

    base::Result<base::Done> start(Scope scope, std::function<void()> onUpdate) override {
        {
            const std::scoped_lock lock(_mutex);
            _isUpdated = false;
        }
        return _query.start(std::move(scope), [this, onUpdate = std::move(onUpdate)] {
            onUpdate();
            const std::scoped_lock lock(_mutex);
            _isUpdated = true;
            _updated.notify_all();
        });
    }

    std::vector<ports::PossibleChange> take() override {
        std::vector<ports::PossibleChange> all = _query.take();
        std::erase_if(all, [this](const auto&) { return _random() % 100 < _lost; });
        return all;
    }
    ports::WatchState state() override { return _query.state(); }
    void retry() override { _query.retry(); }
    void stop() override { _query.stop(); }

private:
    ports::MetadataQuery& _query;
    std::atomic<unsigned> _lost = 0;
    std::mt19937 _random;  ///< only `take` uses it, one at a time
    std::mutex _mutex;     ///< guards what follows
    std::condition_variable _updated;
    bool _isUpdated = false;
};

}  // namespace tessaly::tests
