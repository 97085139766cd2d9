// SPDX-License-Identifier: MIT
#pragma once

namespace tessaly::desktop {

/// Whether the user's session has a bus. To be asked before it is spoken to: where there is none,
/// the library would start one, which nobody ends.
bool hasSessionBus();

}  // namespace tessaly::desktop
