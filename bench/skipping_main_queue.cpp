// SPDX-License-Identifier: MIT
#include "skipping_main_queue.h"

#include <algorithm>
#include <utility>

namespace tessaly::bench {

ports::MainQueue::Time SkippingMainQueue::now() {
    const std::scoped_lock lock(_mutex);
    return std::chrono::steady_clock::now() - _start + _skipped;
}

void SkippingMainQueue::post(Job job) {
    const std::scoped_lock lock(_mutex);
    _jobs.push_back(std::move(job));
    _posted.notify_all();
}

ports::MainQueue::Timer SkippingMainQueue::plan(Time delay, Time interval, Job job) {
    const Time due = now() + delay;
    const std::scoped_lock lock(_mutex);
    _timers.emplace(++_newest, Planned{due, interval, std::move(job)});
    return _newest;
}

ports::MainQueue::Timer SkippingMainQueue::after(Time delay, Job job) {
    return plan(delay, Time{}, std::move(job));
}

ports::MainQueue::Timer SkippingMainQueue::every(Time interval, Job job) {
    return plan(interval, interval, std::move(job));
}

void SkippingMainQueue::cancel(Timer timer) {
    const std::scoped_lock lock(_mutex);
    _timers.erase(timer);
}

void SkippingMainQueue::skip(Time time) {
    const std::scoped_lock lock(_mutex);
    _skipped += time;
}

ports::MainQueue::Job SkippingMainQueue::takeDue() {
    const Time time = now();
    const std::scoped_lock lock(_mutex);
    if (!_jobs.empty()) {
        Job job = std::move(_jobs.front());
        _jobs.pop_front();
        return job;
    }
    const auto timer = std::find_if(_timers.begin(), _timers.end(),
                                    [time](const auto& entry) { return entry.second.due <= time; });
    if (timer == _timers.end()) {
        return {};
    }
    if (timer->second.interval == Time{}) {
        Job job = std::move(timer->second.job);
        _timers.erase(timer);
        return job;
    }
    timer->second.due = time + timer->second.interval;
    return timer->second.job;
}

bool SkippingMainQueue::runDue() {
    bool ranAny = false;
    for (Job job = takeDue(); job; job = takeDue()) {
        ranAny = true;
        job();
    }
    return ranAny;
}

bool SkippingMainQueue::waitForJob(std::chrono::milliseconds most) {
    std::unique_lock lock(_mutex);
    return _posted.wait_for(lock, most, [this] { return !_jobs.empty(); });
}

}  // namespace tessaly::bench
