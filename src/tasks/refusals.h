// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "base/failure.h"
#include "tasks/task_outcome.h"

namespace tessaly::tasks {

/// "Notes/Plan.txt", as users are told of a note.
std::string pathOf(const NoteName& note);

/// Why a note or a line of it is not changed, in words for the user.

base::Failure noteIsNotThere(const NoteName& note);
base::Failure noteIsNotText(const NoteName& note);

/// Why the line `lineIndex`, from 0, is refused; English, for `tr`. The text is about "{0}", which
/// is "Notes/Plan.txt:3".
base::Failure lineRefused(const NoteName& note, std::size_t lineIndex, const char* english,
                          base::Failure::Kind kind = base::Failure::Kind::malformed);

/// As above, for a line that reads differently but stands at `nowIndex`.
base::Failure lineHasMoved(const NoteName& note, std::size_t lineIndex, std::size_t nowIndex);

}  // namespace tessaly::tasks
