// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/services.h"
#include "ports/cloud_folders.h"

namespace tessaly::app {

/// The folders of sync clients that may become the cloud drive: those that are there, without the
/// one that is it already, those in the data folder and those that hold it. Paused ones come last.
std::vector<ports::CloudFolder> cloudDriveOffers(Services& services);

/// The words of the command that takes an offer.
std::vector<std::string> acceptingCommand(const ports::CloudFolder& offer);

/// The client's folder that holds the data folder in use, or is it: of those that clients tell of,
/// the innermost; else the nearest folder with a client's mark in it, for which `source` is the
/// mark, and which is not known to be paused. Nothing: no client is known to keep it in step.
std::optional<ports::CloudFolder> syncClientOf(Services& services);

}  // namespace tessaly::app
