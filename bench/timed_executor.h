// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <utility>

#include "base/thread_pool.h"
#include "moment.h"

namespace tessaly::bench {

/// A thread pool that tells when it was given work, and when all of that was done.
class TimedExecutor final : public base::Executor {
public:
    explicit TimedExecutor(std::size_t threads) : _pool(threads) {}

    void post(base::Job job) override {
        {
            const std::scoped_lock lock(_mutex);
            if (_inHand++ == 0) {
                _busySince = Moment::now();
            }
            ++_taken;
        }
        _pool.post([this, job = std::move(job)]() mutable {
            base::runGuarded(std::move(job));
            done();
        });
    }
    std::size_t width() const override { return _pool.width(); }

    /// How many jobs it has been given.
    std::size_t taken() const {
        const std::scoped_lock lock(_mutex);
        return _taken;
    }
    /// When it was last given a job while it had none.
    Moment busySince() const {
        const std::scoped_lock lock(_mutex);
        return _busySince;
    }
    /// When it last had none left.
    Moment waitUntilIdle() {
        std::unique_lock lock(_mutex);
        _idle.wait(lock, [this] { return _inHand == 0; });
        return _idleSince;
    }

private:
    void done() {
        const std::scoped_lock lock(_mutex);
        if (--_inHand == 0) {
            _idleSince = Moment::now();
            _idle.notify_all();
        }
    }

    mutable std::mutex _mutex;  ///< guards what follows
    std::condition_variable _idle;
    std::size_t _inHand = 0;
    std::size_t _taken = 0;
    Moment _busySince{};
    Moment _idleSince{};

    base::ThreadPool _pool;  ///< last: its jobs use the rest
};

}  // namespace tessaly::bench
