// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace tessaly::store {

/// Work that brings more work, shared by several threads. The newest is done first, so that little
/// waits at a time.
template <class Job>
class WorkQueue {
public:
    /// Any thread, also from inside a job.
    void push(Job job) {
        {
            const std::scoped_lock lock(_mutex);
            _jobs.push_back(std::move(job));
        }
        _changed.notify_one();
    }

    /// Calls `run` with one job after the other, and returns when none is left and no thread works
    /// on one that could bring more. Waits only for jobs that have been started.
    template <class Run>
    void drain(const Run& run) {
        std::unique_lock lock(_mutex);
        while (true) {
            _changed.wait(lock, [this] { return !_jobs.empty() || _running == 0; });
            if (_jobs.empty()) {
                return;
            }
            Job job = std::move(_jobs.back());
            _jobs.pop_back();
            const Running running(*this, lock);
            run(job);
        }
    }

private:
    // The lock is open and the job counts while this lives, also when the job throws.
    class Running {
    public:
        Running(WorkQueue& queue, std::unique_lock<std::mutex>& lock) : _queue(queue), _lock(lock) {
            ++_queue._running;
            _lock.unlock();
        }
        ~Running() {
            _lock.lock();
            if (--_queue._running == 0) {
                _queue._changed.notify_all();
            }
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        WorkQueue& _queue;
        std::unique_lock<std::mutex>& _lock;
    };

    std::mutex _mutex;
    std::condition_variable _changed;
    std::vector<Job> _jobs;
    std::size_t _running = 0;
};

}  // namespace tessaly::store
