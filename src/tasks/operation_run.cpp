// SPDX-License-Identifier: MIT
#include "tasks/operation_run.h"

#include <algorithm>
#include <utility>

#include "tasks/note_step.h"
#include "tasks/operation_failures.h"

namespace tessaly::tasks {

using base::Done;
using base::Failure;
using base::Result;
using How = StepWriter::How;

std::optional<OperationRun::Stop> OperationRun::make() {
    const std::size_t made = _start == Start::resumed ? stepsMade() : 0;
    for (std::size_t index = made; index < _operation.steps.size(); ++index) {
        if (auto stop = makeStep(index)) {
            return stop;
        }
        // Without it the notes tell, unless others change them.
        [[maybe_unused]] const auto noted =
            _journal.noteStepsMade(index + 1, ports::Durability::later);
    }
    return std::nullopt;
}

// As each step is on the disk before the next begins, one that was made tells of those before it.
std::size_t OperationRun::stepsMade() const {
    const std::vector<NoteStep>& steps = _operation.steps;
    for (std::size_t count = steps.size(); count > _operation.stepsMade; --count) {
        const NoteStep& last = steps[count - 1];
        const auto now = _notes.read(last);
        const auto end = steps.begin() + static_cast<std::ptrdiff_t>(count);
        if (!now || hashOf(*now) != last.hashAfter) {
            continue;
        }
        // Steps may lead in a circle; then nothing can be told.
        const bool isCircle = std::any_of(steps.begin(), end, [&](const NoteStep& step) {
            return isSameNote(step, last) && step.hashBefore == last.hashAfter;
        });
        if (!isCircle) {
            return count;
        }
    }
    return _operation.stepsMade;
}

std::optional<OperationRun::Stop> OperationRun::makeStep(std::size_t index) {
    NoteStep& step = _operation.steps[index];
    bool isOfJournal = false;
    How how;
    how.strictness = _operation.undoes ? Strictness::whatCanBe : Strictness::allOrNothing;
    how.cause = _operation.cause;
    how.earlier = _start == Start::resumed ? How::Earlier::maybe : How::Earlier::no;
    how.record = [&](const NoteStep& next) {
        auto recorded = _journal.amend(index, next);
        isOfJournal = !recorded.ok();
        return recorded;
    };
    auto made = _notes.write(step, how);
    if (made) {
        step = *std::move(made);
        return std::nullopt;
    }
    if (isOfJournal || !isLeftOut(made.failure().kind)) {
        return Stop{index, made.failure(), isOfJournal};
    }
    loggedOfNote(made.failure());
    step.edits.clear();
    step.hashAfter = step.hashBefore;
    step.change = {};
    return std::nullopt;
}

bool OperationRun::isLeftOut(Failure::Kind kind) const {
    return _operation.undoes && (isLost(kind) || (_start == Start::resumed && isLasting(kind)));
}

Result<Done> OperationRun::takeBack(std::size_t count) {
    How how;
    how.strictness = Strictness::whatCanBe;
    how.cause = store::ChangeCause::undone;
    // Who goes on from here must not take for made what is about to be taken back.
    if (count > 0) {
        if (auto noted = _journal.noteStepsMade(0, ports::Durability::now); !noted) {
            return noted;
        }
    }
    std::optional<Failure> worst;
    for (std::size_t index = count; index-- > 0;) {
        const NoteStep& step = _operation.steps[index];
        if (!hasEffect(step)) {
            continue;
        }
        const auto back = _notes.write(inverse(step), how);
        if (!back && !isLost(back.failure().kind) && (!worst || isLasting(worst->kind))) {
            worst = back.failure();
        }
    }
    return worst ? Result<Done>(*std::move(worst)) : Done{};
}

}  // namespace tessaly::tasks
