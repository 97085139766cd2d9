// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/failure.h"

namespace tessaly::ports {

/// A process of ours in the background that is followed by who started it. When this object goes
/// before the process does, that runs on.
class FollowedJob {
public:
    virtual ~FollowedJob() = default;

    virtual bool hasEnded() = 0;
    /// Asks it to end, which takes it a moment; one that has ended is left in peace.
    virtual void end() = 0;
};

/// Starts the command of this installation as `BackgroundJob` starts the program itself, and
/// returns when it has started. Any thread.
using FollowedJobs = std::function<base::Result<std::unique_ptr<FollowedJob>>(
    const std::vector<std::string>& arguments)>;

}  // namespace tessaly::ports
