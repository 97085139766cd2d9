// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace tessaly::ports {

/// The program's main thread as a place to run jobs: in the order given, one at a time, while it is
/// in `run`. All but `run` may be called from any thread. Jobs must not throw.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    using Job = std::function<void()>;
    /// Time since some start that the system clock's changes do not touch.
    using Time = std::chrono::nanoseconds;
    /// Names a timer until it has fired once, or, repeating, for good; 0 is none.
    using Timer = std::uint64_t;

    virtual Time now() = 0;

    virtual void post(Job job) = 0;

    /// Runs `job` once, not before `delay` has passed.
    virtual Timer after(Time delay, Job job) = 0;
    /// Runs `job` again and again; a turn that is missed is not made up for.
    virtual Timer every(Time interval, Job job) = 0;
    /// Once this has returned on the main thread, the timer does not fire. Other values are
    /// ignored.
    virtual void cancel(Timer timer) = 0;

    /// Runs jobs until `stop`, which also counts when it came before. Main thread.
    virtual void run() = 0;
    virtual void stop() = 0;
};

}  // namespace tessaly::ports
