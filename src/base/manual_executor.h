// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <mutex>
#include <random>
#include <vector>

#include "base/executor.h"

namespace tessaly::base {

/// Keeps jobs until a test steps them. The order is drawn from the test's own engine, so that one
/// seed always gives one order, and many seeds give the orders that threads would give.
class ManualExecutor final : public Executor {
public:
    using Engine = std::mt19937_64;

    /// `width` is what the executor pretends to have; 0 is for executors that run jobs in `post`.
    explicit ManualExecutor(std::size_t width = 1);

    void post(Job job) override;
    std::size_t width() const override { return _width; }

    /// Runs one of the waiting jobs on the calling thread; false when none waits.
    bool step(Engine& engine);
    /// Steps until no job waits.
    void runAll(Engine& engine);
    /// How many jobs wait.
    std::size_t waiting() const;

private:
    Job take(Engine& engine);

    const std::size_t _width;
    mutable std::mutex _mutex;  ///< guards what follows
    std::vector<Job> _jobs;
};

}  // namespace tessaly::base
