// SPDX-License-Identifier: MIT
#pragma once

#include "app/findings.h"
#include "app/services.h"

namespace tessaly::app {

/// Tells which sync client keeps the data folder in step, and which folders of clients may become
/// the cloud drive.
void examineClouds(Services& services, Findings& findings);

}  // namespace tessaly::app
