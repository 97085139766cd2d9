// SPDX-License-Identifier: MIT
#pragma once

#include "app/findings.h"
#include "app/services.h"

namespace tessaly::app {

/// Tells what the start-up index holds, or why there is none.
void examineIndex(Services& services, Findings& findings);

}  // namespace tessaly::app
