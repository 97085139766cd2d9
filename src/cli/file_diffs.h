// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/pretend_files.h"
#include "cli/context.h"

namespace tessaly::cli {

/// A file of the data folder and what it holds.
struct FileText {
    std::string path;
    std::string_view bytes;
};

/// How one file differs from another, in the same format; empty where they are equal.
std::string diffBetween(Context& context, const FileText& from, const FileText& to);

/// Prints what `diffBetween` gave, as `printDiffs` does without --json.
void printDiffText(Context& context, const std::string& text);

/// Prints what would become of files in the unified format, as `git diff` does: "a/" and "b/"
/// before names relative to the data folder, and a header for a file that would be moved, or that
/// is empty and would come or go; those with a header last, as `patch` needs it. Of a file that is
/// binary it is only said that it differs. A terminal gets colours, and no control character of a
/// note.
void printDiffs(Context& context, const std::vector<app::FileChange>& changes);

}  // namespace tessaly::cli
