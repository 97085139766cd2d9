// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>

#include "ports/main_queue.h"

namespace tessaly::bench {

/// A main queue whose time runs as ever, but can be put forward too, so that nobody waits for a
/// timer. Its jobs run in `runDue` alone.
class SkippingMainQueue final : public ports::MainQueue {
public:
    Time now() override;
    void post(Job job) override;
    Timer after(Time delay, Job job) override;
    Timer every(Time interval, Job job) override;
    void cancel(Timer timer) override;
    void run() override {}
    void stop() override {}

    void skip(Time time);
    /// Runs the jobs that were posted, and each timer that is due once. Whether there were any.
    bool runDue();
    /// Waits until a job is posted, but no longer than `most`. Whether there is one.
    bool waitForJob(std::chrono::milliseconds most);

private:
    struct Planned {
        Time due;
        Time interval;  ///< 0: only once
        Job job;
    };
    Timer plan(Time delay, Time interval, Job job);
    /// Empty when there is nothing to do now.
    Job takeDue();

    const std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _posted;
    std::deque<Job> _jobs;
    std::map<Timer, Planned> _timers;
    Timer _newest = 0;
    Time _skipped{};
};

}  // namespace tessaly::bench
