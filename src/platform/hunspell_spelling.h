// SPDX-License-Identifier: MIT
#pragma once

#include "platform/dictionary_files.h"
#include "ports/spelling.h"

namespace tessaly::platform {

/// Spelling by Hunspell's dictionaries, as most programs of the desktop use them, in any encoding
/// that they are written in. A dictionary that cannot be read is left out. The places are looked at
/// when the dictionaries are loaded.
ports::SpellingDictionaries hunspellSpelling(DictionaryPlaces places);

}  // namespace tessaly::platform
