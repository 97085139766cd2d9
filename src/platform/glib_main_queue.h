// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "ports/main_queue.h"

namespace tessaly::platform {

/// The main thread's queue over GLib's default main context, so that what else of GLib belongs to
/// that thread runs in between. Made with the first job: a program that never waits pays nothing.
/// Only one at a time is in `run`, and none is destroyed in there; jobs that are left are dropped.
class GlibMainQueue : public ports::MainQueue {
public:
    static constexpr int noDescriptor = -1;

    /// When something can be read from `stopDescriptor`, that is as a call of `stop`: for what a
    /// signal's handler may do. It is not read from, stays the caller's and outlives this object.
    explicit GlibMainQueue(int stopDescriptor = noDescriptor);
    ~GlibMainQueue() override;
    GlibMainQueue(const GlibMainQueue&) = delete;
    GlibMainQueue& operator=(const GlibMainQueue&) = delete;

    Time now() override;
    void post(Job job) override;
    Timer after(Time delay, Job job) override;
    Timer every(Time interval, Job job) override;
    void cancel(Timer timer) override;
    void run() override;
    void stop() override;

private:
    struct Loop;  // what GLib knows of this
    struct TimedJob {
        Time interval;  ///< zero: once
        Job job;
    };
    struct Due {
        Timer timer;
        TimedJob timed;
    };

    Timer add(Time delay, Time interval, Job job);
    void runReady();
    std::optional<Job> takePosted();
    std::optional<Due> takeDue(Time until);
    void putBack(Due due);
    void wake();

    const int _stopDescriptor;
    std::atomic<bool> _isStopped = false;

    std::mutex _mutex;  ///< guards what follows
    std::unique_ptr<Loop> _loop;
    std::deque<Job> _posted;
    std::map<std::pair<Time, Timer>, TimedJob> _timers;  ///< by the time when they are due
    Timer _lastTimer = 0;
    Timer _firing = 0;  ///< whose job runs now; 0 when it was cancelled meanwhile
};

}  // namespace tessaly::platform
