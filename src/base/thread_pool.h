// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "base/executor.h"

namespace tessaly::base {

/// A fixed number of threads that run jobs. No job may block on another job being started: with
/// all threads blocked none would ever start.
class ThreadPool final : public Executor {
public:
    /// At least one thread is started.
    explicit ThreadPool(std::size_t threads);
    /// Runs all jobs that are queued, and those that they post, and returns when they have ended.
    ~ThreadPool() override;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void post(Job job) override;
    std::size_t width() const override { return _threads.size(); }

private:
    void runJobs();
    /// Waits for a job; an empty one when there will be no more.
    Job nextJob();

    std::mutex _mutex;  ///< guards what follows, up to the threads
    std::condition_variable _changed;
    std::deque<Job> _jobs;
    bool _ending = false;

    std::vector<std::thread> _threads;  ///< constant after construction
};

}  // namespace tessaly::base
