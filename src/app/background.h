// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/executor.h"
#include "base/serial_queue.h"
#include "ports/main_queue.h"

namespace tessaly::app {

/// Work off the main thread, one job after the other, whose results come back to it; none comes
/// after this has ended. Main thread.
class Background {
public:
    /// `label` names its queue to developers. Both ports outlive it.
    Background(std::string label, base::Executor& executor, ports::MainQueue& mainQueue);
    /// Waits for the job that runs, and those that must.
    ~Background();

    /// Run on the main thread.
    using Then = std::function<void()>;
    /// Whether a job runs that had not begun when this ended.
    enum class AtEnd { leftOut, run };
    /// Has a job run; an empty `Then` is none.
    void run(std::function<Then()> job, AtEnd atEnd = AtEnd::leftOut);

private:
    std::shared_ptr<const bool> _alive = std::make_shared<bool>(true);
    ports::MainQueue& _mainQueue;
    base::SerialQueue _queue;
};

}  // namespace tessaly::app
