// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

namespace tessaly::base {

using Job = std::function<void()>;

/// Runs jobs, some time, somewhere. An exception that leaves a job is logged as
/// "internal error in a background job: " and goes no further.
class Executor {
public:
    virtual ~Executor() = default;

    /// Takes a job. Any thread. Jobs start in the order taken, but may overlap.
    virtual void post(Job job) = 0;

    /// How many jobs can run at the same time beside the caller; 0 when `post` runs them itself.
    virtual std::size_t width() const = 0;
};

/// Runs a job and lets go of what it holds; an exception is logged and goes no further. For those
/// who run jobs.
void runGuarded(Job job) noexcept;

/// Calls `body(index)` for every index below `count` and returns when all have returned. The
/// caller's thread works too, so it may be used from a job of the same executor: no job waits for
/// another to start. Indices are handed out in order. At most `executor.width() + 1` calls run at a
/// time. An exception does not keep the other indices from being called; the first one is thrown
/// on at the end.
void parallelFor(Executor& executor, std::size_t count,
                 const std::function<void(std::size_t index)>& body);

}  // namespace tessaly::base
