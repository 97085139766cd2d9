// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "tasks/planned_changes.h"

namespace tessaly::tasks {

/// Moves the processed tasks of a note, each with the lines indented under it, into the note's
/// archive.
void planArchive(PlannedChanges& plan, const NoteName& note, const std::vector<std::string>& lines);

}  // namespace tessaly::tasks
