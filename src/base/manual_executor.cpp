// SPDX-License-Identifier: MIT
#include "base/manual_executor.h"

#include <cassert>
#include <utility>

namespace tessaly::base {

ManualExecutor::ManualExecutor(std::size_t width) : _width(width) {
    assert(width > 0);
}

void ManualExecutor::post(Job job) {
    const std::scoped_lock lock(_mutex);
    _jobs.push_back(std::move(job));
}

bool ManualExecutor::step(Engine& engine) {
    Job job = take(engine);
    if (!job) {
        return false;
    }
    runGuarded(std::move(job));
    return true;
}

void ManualExecutor::runAll(Engine& engine) {
    while (step(engine)) {
    }
}

std::size_t ManualExecutor::waiting() const {
    const std::scoped_lock lock(_mutex);
    return _jobs.size();
}

Job ManualExecutor::take(Engine& engine) {
    const std::scoped_lock lock(_mutex);
    if (_jobs.empty()) {
        return {};
    }
    // Not a distribution: those differ between standard libraries, and a seed must not.
    std::swap(_jobs[engine() % _jobs.size()], _jobs.back());
    Job job = std::move(_jobs.back());
    _jobs.pop_back();
    return job;
}

}  // namespace tessaly::base
