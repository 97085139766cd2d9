// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/pretend_files.h"
#include "cli/context.h"

namespace tessaly::cli {

/// Prints what would become of files in the unified format, as `git diff` does: "a/" and "b/"
/// before names relative to the data folder, and a header for a file that would be moved, or that
/// is empty and would come or go; those with a header last, as `patch` needs it. A terminal gets
/// colours, and no control character of a note.
void printDiffs(Context& context, const std::vector<app::FileChange>& changes);

}  // namespace tessaly::cli
