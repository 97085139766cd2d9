// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/services.h"
#include "base/day.h"
#include "base/note_type.h"

namespace tessaly::app {

/// A text that a note is known to have held.
struct KnownEarlierText {
    base::Instant time{};
    std::string bytes;
};

/// What a note is known to have held on this device, oldest first, each text once: by the history,
/// and by the start-up index as of when it was written. What cannot be read is left out. `path` is
/// that of its file.
std::vector<KnownEarlierText> knownEarlierTexts(Services& services, base::NoteType type,
                                                const std::string& filename,
                                                const std::string& path);

}  // namespace tessaly::app
