// SPDX-License-Identifier: MIT
#include "base/thread_pool.h"

#include <algorithm>
#include <utility>

namespace tessaly::base {

ThreadPool::ThreadPool(std::size_t threads) : _width(std::max<std::size_t>(threads, 1)) {}

ThreadPool::~ThreadPool() {
    {
        const std::scoped_lock lock(_mutex);
        _ending = true;
    }
    _changed.notify_all();
    for (auto& thread : _threads) {
        thread.join();
    }
}

void ThreadPool::post(Job job) {
    {
        const std::scoped_lock lock(_mutex);
        _jobs.push_back(std::move(job));
        // While it is ending, only jobs post, and the threads that run them go on until none is
        // left.
        if (!_ending && _threads.size() < _width) {
            _threads.emplace_back([this] { runJobs(); });
        }
    }
    _changed.notify_one();
}

void ThreadPool::runJobs() {
    while (Job job = nextJob()) {
        runGuarded(std::move(job));
    }
}

Job ThreadPool::nextJob() {
    std::unique_lock lock(_mutex);
    _changed.wait(lock, [this] { return !_jobs.empty() || _ending; });
    if (_jobs.empty()) {
        return {};
    }
    Job job = std::move(_jobs.front());
    _jobs.pop_front();
    return job;
}

}  // namespace tessaly::base
