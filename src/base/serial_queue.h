// SPDX-License-Identifier: MIT
#pragma once

#include <cassert>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "base/executor.h"
#include "base/thread_annotations.h"

namespace tessaly::base {

/// Runs jobs one at a time, in the order in which they were given. What is changed only in its
/// jobs and blocks needs no lock: declare it `TESSALY_GUARDED_BY(_queue)` and begin each job and
/// block that touches it with `_queue.assertCurrent()`. Any thread may use a queue. Nothing in a
/// job or block may call out to a listener, a port or another queue's `sync`.
///
/// A queue may be destroyed at any time, even in a job of its own; the jobs it was given still run.
/// Its executor must outlive them.
class TESSALY_CAPABILITY("queue") SerialQueue {
public:
    /// `label` names the queue to developers.
    SerialQueue(std::string label, Executor& executor);
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Runs `job` later on the executor, behind the jobs given before it. Each job takes a turn of
    /// its own at the executor, so that a busy queue leaves room for others. Given from within the
    /// queue, it runs when the current job or block has ended, on an inline executor too.
    void async(Job job);

    /// Runs the jobs given so far and then `block`, on the calling thread, and returns the block's
    /// value; its exception passes through. Waits for a job that runs, never for one to start. The
    /// caller must not be inside this queue.
    template <class Block>
    std::invoke_result_t<Block> sync(Block&& block) {
        const Turn turn(*_state);
        return std::forward<Block>(block)();
    }

    /// Whether the calling thread is in a job or block of this queue, be it through other queues.
    bool isCurrent() const;
    /// States to assertions and to Clang that `isCurrent()`.
    void assertCurrent() const TESSALY_ASSERTS(this) { assert(isCurrent()); }

    const std::string& label() const;

private:
    struct State;

    /// The calling thread's stay inside the queue, for a block.
    class Turn {
    public:
        explicit Turn(State& state);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        const std::shared_ptr<State> _state;
    };

    const std::shared_ptr<State> _state;  ///< held by its waiting jobs too
};

}  // namespace tessaly::base
