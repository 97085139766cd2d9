// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/findings.h"
#include "app/services.h"

namespace tessaly::app {

/// Tells what would keep the watcher from hearing of changes. `folders`: the sub-folders of the
/// kinds' folders, relative to the data folder, in no order.
void examineWatching(Services& services, std::vector<std::string> folders, Findings& findings);

}  // namespace tessaly::app
