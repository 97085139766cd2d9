// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "app/conflicts.h"
#include "base/day.h"
#include "cli/context.h"
#include "cli/json_line.h"

namespace tessaly::cli {

/// "Notes/Plans.txt": how a note in conflict is named to the user.
std::string nameOf(const app::ConflictedNote& note);

/// Prints a note's name, and a line for each of its versions.
void printVersions(Context& context, const app::ConflictedNote& note);

/// The record of one version, by its place in the note's.
JsonObject recordOf(const app::ConflictedNote& note, std::size_t index);

/// Date and time in the user's words.
std::string dateInWords(Context& context, base::Instant time);

}  // namespace tessaly::cli
