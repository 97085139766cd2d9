// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

#include "base/executor.h"

namespace tessaly::base {

/// A semaphore of count 1 for work that is long and may call out: one piece of work holds it at a
/// time, in the order in which they came. Who has to wait does so as a job that has not been posted
/// yet, not as a thread, so that a pool's few threads never wait for one another.
class Gate {
public:
    /// `executor` outlives the gate.
    explicit Gate(Executor& executor);
    /// As `close`.
    ~Gate();
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    /// Runs `work` on the executor when the gate is free, and holds it until `work` returns. Any
    /// thread, also from within. Nothing is run once the gate is closed.
    void enter(Job work);

    /// Drops the work that waits and returns when none runs. Not from within.
    void close();

    /// Returns when nothing runs or waits. For the main thread and tests: not from a pool's job.
    void waitUntilFree();

private:
    struct State {
        std::mutex mutex;  ///< guards what follows
        std::condition_variable changed;
        std::deque<Job> waiting;
        bool isHeld = false;  ///< a piece of work runs, or its turn has been posted
        bool isRunning = false;
        bool isClosed = false;
    };
    static void runNext(const std::shared_ptr<State>& state, Executor& executor);

    Executor& _executor;
    const std::shared_ptr<State> _state;  ///< held by posted jobs too
};

}  // namespace tessaly::base
