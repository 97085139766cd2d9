// SPDX-License-Identifier: MIT
#pragma once

#include "base/failure.h"
#include "tasks/operation.h"
#include "tasks/step_writer.h"

namespace tessaly::tasks {

/// `plan` with its steps prepared for the notes as they are, one after the other; those without an
/// effect are left out. Writes nothing, logs nothing.
base::Result<Operation> prepared(const StepWriter& notes, Operation plan);

/// The operation that takes `operation` back as far as the notes as they are allow it; a line that
/// cannot be restored keeps its copies. What is wrong with a note that is left out is logged.
/// Writes nothing. Failure: a note could not be read.
base::Result<Operation> preparedUndo(const StepWriter& notes, const Operation& operation);

}  // namespace tessaly::tasks
