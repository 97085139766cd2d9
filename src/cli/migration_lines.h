// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "store/data_store.h"

namespace tessaly::cli {

/// Tells on standard error what stayed behind, and why.
void complainOf(const store::MoveReport& report);

/// Where the cloud drive is set, and how that is changed; `container` is its folder.
std::vector<std::string> syncPreferences(const std::string& container);

}  // namespace tessaly::cli
