// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "base/failure.h"
#include "tasks/operation.h"
#include "tasks/operation_journal.h"
#include "tasks/step_writer.h"

namespace tessaly::tasks {

/// Makes the steps of the journal's pending operation, under its lock. Those of an undoing are made
/// as far as they can be.
class OperationRun {
public:
    enum class Start {
        fresh,    ///< written down just now
        resumed,  ///< some of its steps may have been made by a process that died
    };

    /// All outlive this object. The steps of `operation` become what they really were.
    OperationRun(const StepWriter& notes, OperationJournal& journal, Operation& operation,
                 Start start)
        : _notes(notes), _journal(journal), _operation(operation), _start(start) {}

    /// Why a step was not made, where those before it were.
    struct Stop {
        std::size_t step;
        base::Failure failure;
        bool isOfJournal;  ///< the note itself would have been changed
    };

    /// Makes all steps. A step of an undoing that never can be made loses its edits, which is
    /// logged; else nothing is.
    std::optional<Stop> make();

    /// Takes the first `count` steps back, as far as it can be. Failure: the first of a note that
    /// could not be changed; that may be worth another try, rather than one that is `isLasting`.
    base::Result<base::Done> takeBack(std::size_t count);

private:
    std::size_t stepsMade() const;
    std::optional<Stop> makeStep(std::size_t index);
    bool isLeftOut(base::Failure::Kind kind) const;

    const StepWriter& _notes;
    OperationJournal& _journal;
    Operation& _operation;
    const Start _start;
};

}  // namespace tessaly::tasks
