// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "ports/main_queue.h"

namespace tessaly::tests {

/// A main queue whose time stands still until it is told to pass. `now`, `post`, timers, `stop` and
/// `waitForPost` may be called from any thread; whoever calls one of the others is the main thread.
class ManualMainQueue final : public ports::MainQueue {
public:
    explicit ManualMainQueue(Time start = std::chrono::hours(1)) : _now(start) {}

    Time now() override {
        const std::scoped_lock lock(_mutex);
        return _now;
    }

    void post(Job job) override {
        {
            const std::scoped_lock lock(_mutex);
            _posted.push_back(std::move(job));
        }
        _changed.notify_all();
    }

    Timer after(Time delay, Job job) override { return add(delay, Time::zero(), std::move(job)); }
    Timer every(Time interval, Job job) override { return add(interval, interval, std::move(job)); }

    void cancel(Timer timer) override {
        const std::scoped_lock lock(_mutex);
        std::erase_if(_timers, [&](const auto& entry) { return entry.first.second == timer; });
        if (_repeating == timer) {
            _repeating = 0;
        }
    }

    /// Runs what is posted and what is due, and waits for more; time does not pass.
    void run() override {
        for (;;) {
            runPosted();
            runDue(now());
            std::unique_lock lock(_mutex);
            _changed.wait(lock, [&] { return _isStopped || hasWork(); });
            if (std::exchange(_isStopped, false)) {
                return;
            }
        }
    }

    void stop() override {
        {
            const std::scoped_lock lock(_mutex);
            _isStopped = true;
        }
        _changed.notify_all();
    }

    /// Runs the posted jobs and those that they post, unless it is stopped; how many.
    int runPosted() {
        int count = 0;
        while (const auto job = takePosted()) {
            (*job)();
            ++count;
        }
        return count;
    }

    /// Lets time pass, running what falls due at its time and in its order, and what is posted.
    void advance(Time time) {
        const Time end = now() + time;
        runPosted();
        runDue(end);
        const std::scoped_lock lock(_mutex);
        _now = std::max(_now, end);
    }

    /// Whether a job is posted, or was before `atMost` had passed.
    bool waitForPost(std::chrono::milliseconds atMost = std::chrono::seconds(10)) {
        std::unique_lock lock(_mutex);
        return _changed.wait_for(lock, atMost, [&] { return !_posted.empty(); });
    }

    /// Runs what is posted until `isTrue()`, waiting for posts; false: they did not come.
    template <class Condition>
    bool runPostedUntil(const Condition& isTrue,
                        std::chrono::milliseconds atMost = std::chrono::seconds(10)) {
        while (!isTrue()) {
            if (!waitForPost(atMost)) {
                return false;
            }
            runPosted();
        }
        return true;
    }

    std::size_t timers() {
        const std::scoped_lock lock(_mutex);
        return _timers.size();
    }

private:
    struct Entry {
        Time interval;  ///< zero: once
        Job job;
    };

    Timer add(Time delay, Time interval, Job job) {
        Timer timer = 0;
        {
            const std::scoped_lock lock(_mutex);
            timer = ++_lastTimer;
            const Time due = delay < Time::max() - _now ? _now + delay : Time::max();
            _timers.emplace(std::pair(due, timer), Entry{interval, std::move(job)});
        }
        _changed.notify_all();
        return timer;
    }

    std::optional<Job> takePosted() {
        const std::scoped_lock lock(_mutex);
        if (_posted.empty() || _isStopped) {
            return std::nullopt;
        }
        Job job = std::move(_posted.front());
        _posted.pop_front();
        return job;
    }

    void runDue(Time end) {
        while (auto due = takeDue(end)) {
            auto& [timer, entry] = *due;
            entry.job();
            putBack(timer, std::move(entry));
            runPosted();
        }
    }

    std::optional<std::pair<Timer, Entry>> takeDue(Time end) {
        const std::scoped_lock lock(_mutex);
        if (_isStopped || _timers.empty() || _timers.begin()->first.first > end) {
            return std::nullopt;
        }
        auto node = _timers.extract(_timers.begin());
        const auto [due, timer] = node.key();
        _now = std::max(_now, due);
        _repeating = node.mapped().interval > Time::zero() ? timer : 0;
        return std::pair(timer, std::move(node.mapped()));
    }

    /// A timer that has just fired, unless it fires once or was cancelled by its own job.
    void putBack(Timer timer, Entry entry) {
        const std::scoped_lock lock(_mutex);
        if (std::exchange(_repeating, 0) == timer) {
            _timers.emplace(std::pair(_now + entry.interval, timer), std::move(entry));
        }
    }

    bool hasWork() const {
        return !_posted.empty() || (!_timers.empty() && _timers.begin()->first.first <= _now);
    }

    std::mutex _mutex;  ///< guards what follows
    std::condition_variable _changed;
    Time _now;
    std::deque<Job> _posted;
    std::map<std::pair<Time, Timer>, Entry> _timers;  ///< by the time when they are due
    Timer _lastTimer = 0;
    Timer _repeating = 0;  ///< the repeating one whose job runs now
    bool _isStopped = false;
};

}  // namespace tessaly::tests
