// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "app/link_target.h"

namespace tessaly::app {

/// Where an address of our own leads, "tessaly://x-callback-url/openNote?noteTitle=Plans". From a
/// note nothing is changed by a click: actions that would are refused.
LinkTarget targetOfPlannerAddress(std::string_view address);

/// A note by its file name as a link has it, with or without its kind's folder before it; a day's
/// where it is called like one. Not decoded any more; refused where it leads out.
LinkTarget targetOfNoteFile(std::string_view filename);

LinkTarget refusedLink(std::string reason);

}  // namespace tessaly::app
