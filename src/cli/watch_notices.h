// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "sync/cloud_sync.h"

namespace tessaly::cli {

/// Tells that folders do not report their changes: why, and how often they are looked at instead;
/// or that all of them do again.
std::string watchNotice(const sync::CloudSync::Watching& watching);

}  // namespace tessaly::cli
