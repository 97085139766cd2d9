// SPDX-License-Identifier: MIT
#include "base/serial_queue.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>

namespace tessaly::base {

struct SerialQueue::State : std::enable_shared_from_this<State> {
    State(std::string name, Executor& runner) : label(std::move(name)), executor(runner) {}

    void give(Job job);
    void enterForBlock();
    void leaveAfterBlock();
    bool isCurrent();

    const std::string label;
    Executor& executor;

private:
    using Lock = std::unique_lock<std::mutex>;

    /// Asks the executor for a turn. It may come before this returns, so no lock is held.
    void schedule() {
        executor.post([self = shared_from_this()] { self->takeTurn(); });
    }
    void takeTurn();
    bool runNext();
    void runFront(Lock& lock);
    void enter() {
        _running = true;
        _thread = std::this_thread::get_id();
    }
    void leave() {
        _running = false;
        _thread = {};
    }

    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _left;
    std::deque<Job> _jobs;
    std::uint64_t _started = 0;  ///< jobs that left `_jobs`
    bool _running = false;       ///< a thread is inside the queue
    std::thread::id _thread;     ///< that thread
    bool _scheduled = false;     ///< a turn at the executor is asked for, or being taken
    std::size_t _waitingBlocks = 0;
};

void SerialQueue::State::give(Job job) {
    {
        const Lock lock(_mutex);
        _jobs.push_back(std::move(job));
        if (_scheduled || _running) {
            return;
        }
        _scheduled = true;
    }
    schedule();
}

void SerialQueue::State::takeTurn() {
    // An inline executor would nest one turn in the other, so its turn lasts to the last job.
    while (runNext()) {
        if (executor.width() > 0) {
            schedule();
            return;
        }
    }
}

/// Whether there is more to do in another turn. Waiting blocks go first, and run the jobs that
/// were given before them: a turn never blocks, and no block waits behind an endless row of jobs.
bool SerialQueue::State::runNext() {
    Lock lock(_mutex);
    if (_running || _waitingBlocks > 0 || _jobs.empty()) {
        _scheduled = false;
        return false;
    }
    enter();
    runFront(lock);
    leave();
    _scheduled = !_jobs.empty() && _waitingBlocks == 0;
    const bool more = _scheduled;
    lock.unlock();
    _left.notify_all();
    return more;
}

void SerialQueue::State::runFront(Lock& lock) {
    Job job = std::move(_jobs.front());
    _jobs.pop_front();
    ++_started;
    lock.unlock();
    runGuarded(std::move(job));
    lock.lock();
}

void SerialQueue::State::enterForBlock() {
    assert(!isCurrent());
    Lock lock(_mutex);
    const std::uint64_t before = _started + _jobs.size();
    ++_waitingBlocks;
    _left.wait(lock, [this] { return !_running; });
    --_waitingBlocks;
    enter();
    while (_started < before) {
        runFront(lock);
    }
}

void SerialQueue::State::leaveAfterBlock() {
    bool more = false;
    {
        const Lock lock(_mutex);
        leave();
        more = !_jobs.empty() && !_scheduled && _waitingBlocks == 0;
        _scheduled = _scheduled || more;
    }
    _left.notify_all();
    if (more) {
        schedule();
    }
}

bool SerialQueue::State::isCurrent() {
    const Lock lock(_mutex);
    return _running && _thread == std::this_thread::get_id();
}

SerialQueue::SerialQueue(std::string label, Executor& executor)
    : _state(std::make_shared<State>(std::move(label), executor)) {}

SerialQueue::~SerialQueue() = default;

void SerialQueue::async(Job job) {
    _state->give(std::move(job));
}

bool SerialQueue::isCurrent() const {
    return _state->isCurrent();
}

const std::string& SerialQueue::label() const {
    return _state->label;
}

SerialQueue::Turn::Turn(State& state) : _state(state.shared_from_this()) {
    _state->enterForBlock();
}

SerialQueue::Turn::~Turn() {
    _state->leaveAfterBlock();
}

}  // namespace tessaly::base
