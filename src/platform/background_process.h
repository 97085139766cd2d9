// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "ports/background_job.h"
#include "ports/followed_job.h"

namespace tessaly::platform {

/// Starts the program file that runs now (/proc/self/exe).
ports::BackgroundJob backgroundProcess();

/// Starts `program`, a path, likewise, as a child of this process. It is asked to end by SIGINT.
ports::FollowedJobs followedProcesses(std::string program);

}  // namespace tessaly::platform
