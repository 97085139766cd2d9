// SPDX-License-Identifier: MIT
#pragma once

#include "app/services.h"
#include "base/failure.h"

namespace tessaly::app {

/// Whether the data folder in use holds no note and no folder of ours yet, so that its user is new.
/// A folder that is not there is new, one that cannot be listed is not.
bool isNewUser(Services& services);

/// Gives a new user something to start from: a welcome note and a few days around today that teach
/// the states of a task. Never writes where a file is. Returns how many notes were made; 0 when the
/// user is not new. Failure: some note could not be written; those before it stay.
base::Result<int> makeSampleNotes(Services& services);

}  // namespace tessaly::app
