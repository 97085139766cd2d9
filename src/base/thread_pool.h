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

/// At most a fixed number of threads that run jobs. They are started with the first jobs, so that a
/// program that has none to give pays for none. No job may block on another job being started: with
/// all threads blocked none would ever start.
class ThreadPool final : public Executor {
public:
    /// `threads`: at least one counts.
    explicit ThreadPool(std::size_t threads);
    /// Runs all jobs that are queued, and those that they post, and returns when they have ended.
    ~ThreadPool() override;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void post(Job job) override;
    std::size_t width() const override { return _width; }

private:
    void runJobs();
    /// Waits for a job; an empty one when there will be no more.
    Job nextJob();

    const std::size_t _width;
    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _changed;
    std::deque<Job> _jobs;
    bool _ending = false;

    std::vector<std::thread> _threads;  ///< constant once it is ending
};

}  // namespace tessaly::base
