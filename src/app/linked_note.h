// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "store/cached_notes.h"

namespace tessaly::app {

/// The file name of the note called `title`: by its title, else by its file's name without
/// extension, with or without the folders before it; in another case where none is spelt so. Of
/// several that are called the same the one that was changed last. Nothing: there is none. Looks at
/// every note.
std::optional<std::string> noteOfTitle(const store::GeneralNotes& notes, std::string_view title);

/// The file name of the note that lies at `filename`, which may lack its extension. Nothing: there
/// is none.
std::optional<std::string> noteOfFile(const store::GeneralNotes& notes, std::string_view filename);

}  // namespace tessaly::app
