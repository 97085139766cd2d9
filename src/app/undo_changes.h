// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

#include "app/services.h"
#include "base/failure.h"
#include "tasks/operation.h"
#include "tasks/operation_runner.h"

namespace tessaly::app {

inline constexpr std::size_t everyOperation = std::numeric_limits<std::size_t>::max();

/// The operations that can be undone in the data folder in use, the newest first, at most `most`.
base::Result<std::vector<tasks::Operation>> listUndo(Services& services,
                                                     std::size_t most = everyOperation);

struct UndoneOperation {
    tasks::Operation operation;
    tasks::Undone undone;
};
struct UndoOutcome {
    std::vector<UndoneOperation> undone;
    /// Why one could not be undone, and those before it were not tried; nothing: all were.
    std::optional<base::Failure> failure;
};

/// Undoes the last `count` operations, the newest first, as far as there are so many. What could
/// not be undone as a whole, and that copies stay, is told to the user through the port
/// `questions`; the first time that a copy goes, that is explained. Failure `notFound`, in words
/// for the user: there is nothing to undo.
base::Result<UndoOutcome> undo(Services& services, std::size_t count = 1);

}  // namespace tessaly::app
