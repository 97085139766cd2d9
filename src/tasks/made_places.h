// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "tasks/operation.h"
#include "tasks/task_outcome.h"

namespace tessaly::tasks {

/// Where lines stand after an operation: each of its steps may move the lines of a note that an
/// earlier one has edited, and a note may have changed before it was made.
class MadePlaces {
public:
    /// The steps as they were planned and as they were made. What was made but was not found among
    /// it stands where it was planned to.
    MadePlaces(std::span<const NoteStep> planned, std::span<const NoteStep> made);

    /// Of a line that no step edits, as it was read.
    std::size_t ofLine(const NoteName& note, std::size_t index) const;

    /// Of the line of edit `edit` of the planned step `step`; of a removed one, where it stood.
    std::size_t ofEdit(std::size_t step, std::size_t edit) const;

private:
    std::size_t through(const NoteName& note, std::size_t firstStep, std::size_t index) const;

    std::vector<NoteStep> _steps;  // in the order of the plan, with the edits as they were made
};

}  // namespace tessaly::tasks
