// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "tasks/planned_changes.h"
#include "tasks/repeats.h"

namespace tessaly::tasks {

/// Copies a line to later days, or refuses it.
void planRepeat(PlannedChanges& plan, const PlannedChanges::Named& named, RepeatInterval interval,
                int count);

/// The lines of later days' notes that are later repeats of `line`, by day. A note that cannot be
/// read has none.
std::vector<NoteLine> laterRepeats(NoteTexts& notes, const NoteLine& line);

}  // namespace tessaly::tasks
