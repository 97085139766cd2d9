// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "base/failure.h"

namespace tessaly::tasks {

inline constexpr std::string_view journalNotWritten = "Could not write the journal: ";

/// Logs why a note could not be changed behind the fixed text for that, and returns it. That its
/// lines have changed is a refusal, and not logged.
base::Failure loggedOfNote(base::Failure failure);

/// Whether trying again later cannot help while the note is as it is.
bool isLasting(base::Failure::Kind kind);

/// Whether the note is none any more that could be edited at all.
bool isLost(base::Failure::Kind kind);

}  // namespace tessaly::tasks
