// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

#include "base/executor.h"

namespace tessaly::tests {

/// Passes jobs on and knows whether all have ended, those that they posted included.
class TrackedExecutor final : public base::Executor {
public:
    explicit TrackedExecutor(base::Executor& executor) : _executor(executor) {}
    /// Waits for the jobs that have been posted.
    ~TrackedExecutor() override {
        std::unique_lock lock(_mutex);
        _ended.wait(lock, [this] { return _unfinished == 0; });
    }
    TrackedExecutor(const TrackedExecutor&) = delete;
    TrackedExecutor& operator=(const TrackedExecutor&) = delete;

    void post(base::Job job) override {
        {
            const std::scoped_lock lock(_mutex);
            ++_unfinished;
        }
        _executor.post([this, job = std::move(job)]() mutable {
            base::runGuarded(std::exchange(job, nullptr));
            const std::scoped_lock lock(_mutex);
            if (--_unfinished == 0) {
                _ended.notify_all();
            }
        });
    }
    std::size_t width() const override { return _executor.width(); }

    bool isIdle() {
        const std::scoped_lock lock(_mutex);
        return _unfinished == 0;
    }

    /// False: there is still something to do after a time that is long for any machine.
    bool waitUntilIdle() {
        std::unique_lock lock(_mutex);
        return _ended.wait_for(lock, std::chrono::minutes(2), [this] { return _unfinished == 0; });
    }

private:
    base::Executor& _executor;
    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _ended;
    std::size_t _unfinished = 0;
};

}  // namespace tessaly::tests
