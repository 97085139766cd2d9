// SPDX-License-Identifier: MIT
#pragma once

#include "ports/background_job.h"

namespace tessaly::platform {

/// Starts the program file that runs now (/proc/self/exe).
ports::BackgroundJob backgroundProcess();

}  // namespace tessaly::platform
