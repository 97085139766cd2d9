// SPDX-License-Identifier: MIT
#include "tasks/operation_runner.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "base/localisation.h"
#include "store/new_files.h"
#include "tasks/note_step.h"
#include "tasks/operation_failures.h"
#include "tasks/operation_plan.h"

namespace tessaly::tasks {

using base::Done;
using base::Failure;
using base::Result;
using store::logged;

namespace {

Failure loggedStop(const OperationRun::Stop& stop) {
    return stop.isOfJournal ? logged(journalNotWritten, stop.failure) : loggedOfNote(stop.failure);
}

Undone undoneBy(const Operation& undo, const std::optional<Operation>& original) {
    Undone undone;
    std::size_t left = 0;
    for (const NoteStep& step : original ? original->steps : std::vector<NoteStep>()) {
        left += step.staysWhenUndone ? 0 : step.edits.size();
        undone.leftCopies = undone.leftCopies || step.staysWhenUndone;
    }
    for (const NoteStep& step : undo.steps) {
        left -= std::min(left, step.edits.size());
        if (hasEffect(step)) {
            undone.steps.push_back(step);
        }
    }
    undone.isComplete = left == 0;
    return undone;
}

}  // namespace

Result<Operation> OperationRunner::make(Operation plan) {
    const auto lock = _journal.take();
    if (!lock) {
        return logged(journalNotWritten, lock.failure());
    }
    if (const auto settled = settlePending(); !settled) {
        return settled.failure();
    }
    plan.number = 0;
    auto ready = prepared(_notes, std::move(plan));
    if (!ready) {
        return loggedOfNote(ready.failure());
    }
    Operation operation = *std::move(ready);
    if (operation.steps.empty()) {
        return operation;
    }
    if (const auto made = makeAll(operation); !made) {
        return made.failure();
    }
    // The notes are changed. What is wrong with the journal is logged, and seen to by the next
    // operation.
    [[maybe_unused]] const auto finished = finish(operation);
    return operation;
}

Result<Undone> OperationRunner::undo(const Operation& operation) {
    const auto lock = _journal.take();
    if (!lock) {
        return logged(journalNotWritten, lock.failure());
    }
    const auto settled = settlePending();
    if (!settled) {
        return settled.failure();
    }
    if (*settled && (*settled)->number == operation.number) {
        return (*settled)->undone;
    }
    const auto original = find(operation.number);
    if (!original) {
        return original.failure();
    }
    if (!*original) {
        return Failure{Failure::Kind::notFound, base::tr("this has been undone already")};
    }
    auto ready = preparedUndo(_notes, **original);
    if (!ready) {
        return loggedOfNote(ready.failure());
    }
    Operation undo = *std::move(ready);
    if (const auto made = makeAll(undo); !made) {
        return made.failure();
    }
    // As above.
    [[maybe_unused]] const auto finished = finishUndo(undo);
    return undoneBy(undo, *original);
}

Result<Done> OperationRunner::settle() {
    if (!_journal.hasPending()) {
        return Done{};
    }
    const auto lock = _journal.take();
    if (!lock) {
        return logged(journalNotWritten, lock.failure());
    }
    const auto settled = settlePending();
    return settled ? Result<Done>(Done{}) : settled.failure();
}

Result<std::optional<OperationRunner::Finished>> OperationRunner::settlePending() {
    auto pending = _journal.pending();
    if (!pending && pending.failure().kind == Failure::Kind::malformed) {
        // It can never be finished, and no operation could be made while it is there.
        logged(journalNotWritten, pending.failure());
        const auto abandoned = abandon();
        return abandoned ? Result<std::optional<Finished>>(std::nullopt) : abandoned.failure();
    }
    if (!pending) {
        return logged(journalNotWritten, pending.failure());
    }
    return *pending ? resume(**std::move(pending)) : std::optional<Finished>();
}

Result<std::optional<OperationRunner::Finished>> OperationRunner::resume(Operation operation) {
    const auto original = operation.undoes ? find(*operation.undoes) : std::optional<Operation>();
    if (!original) {
        return original.failure();
    }
    OperationRun run(_notes, _journal, operation, OperationRun::Start::resumed);
    if (const auto stop = run.make()) {
        const auto given = giveUp(run, *stop);
        return given ? Result<std::optional<Finished>>(std::nullopt) : given.failure();
    }
    const auto closed = operation.undoes ? finishUndo(operation) : finish(operation);
    if (!closed) {
        return closed.failure();
    }
    return operation.undoes
               ? std::optional(Finished{*operation.undoes, undoneBy(operation, *original)})
               : std::nullopt;
}

Result<Done> OperationRunner::giveUp(OperationRun& run, const OperationRun::Stop& stop) {
    const Failure failure = loggedStop(stop);
    if (stop.isOfJournal || !isLasting(failure.kind)) {
        return failure;
    }
    const auto back = run.takeBack(stop.step);
    if (!back && !isLasting(back.failure().kind)) {
        return loggedOfNote(back.failure());
    }
    return abandon();
}

Result<Done> OperationRunner::abandon() {
    auto abandoned = _journal.abandon();
    return abandoned ? abandoned : logged(journalNotWritten, abandoned.failure());
}

Result<Done> OperationRunner::begin(const Operation& operation) {
    auto begun = _journal.begin(operation);
    if (begun) {
        return begun;
    }
    // What failed may have been the last of it.
    [[maybe_unused]] const auto abandoned = _journal.abandon();
    return logged(journalNotWritten, begun.failure());
}

Result<Done> OperationRunner::makeAll(Operation& operation) {
    if (operation.steps.empty()) {
        return Done{};
    }
    if (auto begun = begin(operation); !begun) {
        return begun;
    }
    OperationRun run(_notes, _journal, operation, OperationRun::Start::fresh);
    auto stop = run.make();
    if (!stop) {
        return Done{};
    }
    if (!run.takeBack(stop->step) || !_journal.abandon()) {
        stop->failure.kind = Failure::Kind::other;
        stop->failure.description +=
            "; " + base::tr("the change is half made, and will be finished later");
    }
    return loggedStop(*stop);
}

Result<Done> OperationRunner::finish(Operation& operation) {
    const auto number = _journal.finish();
    if (!number) {
        return logged(journalNotWritten, number.failure());
    }
    operation.number = *number;
    return Done{};
}

// In this order: a kill in between leaves what finds all of it done.
Result<Done> OperationRunner::finishUndo(const Operation& undo) {
    auto done = _journal.forget(*undo.undoes);
    if (done && !undo.steps.empty()) {
        done = _journal.abandon();
    }
    return done ? done : logged(journalNotWritten, done.failure());
}

Result<std::optional<Operation>> OperationRunner::find(std::uint64_t number) {
    // It mostly is one of the last.
    for (const std::size_t most : {std::size_t{8}, std::numeric_limits<std::size_t>::max()}) {
        const auto made = _journal.operations(most);
        if (!made) {
            return logged(journalNotWritten, made.failure());
        }
        const auto found = std::find_if(made->begin(), made->end(),
                                        [&](const Operation& one) { return one.number == number; });
        if (found != made->end()) {
            return std::optional(*found);
        }
    }
    return std::optional<Operation>();
}

}  // namespace tessaly::tasks
