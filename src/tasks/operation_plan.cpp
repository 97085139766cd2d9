// SPDX-License-Identifier: MIT
#include "tasks/operation_plan.h"

#include <map>
#include <string>
#include <utility>

#include "tasks/note_step.h"
#include "tasks/operation_failures.h"

namespace tessaly::tasks {
namespace {

using base::Failure;
using base::Result;

/// Notes as they would be after the steps that were tried.
class Trial {
public:
    explicit Trial(const StepWriter& notes) : _notes(notes) {}

    /// Makes what `prepare` tells of a note's bytes.
    template <class Prepare>
    Result<NoteStep> make(const NoteStep& step, const Prepare& prepare) {
        const std::string name = nameOf(step);
        auto note = _bytes.find(name);
        if (note == _bytes.end()) {
            auto read = _notes.read(step);
            if (!read) {
                return read.failure();
            }
            note = _bytes.emplace(name, *std::move(read)).first;
        }
        Result<NoteStep> tried = prepare(note->second);
        if (tried) {
            note->second = bytesAfter(*tried, note->second);
        }
        return tried;
    }

private:
    const StepWriter& _notes;
    std::map<std::string, NoteBytes> _bytes;
};

// What leads back exactly still is to know its lines, for the case that they move.
NoteStep withPlaces(NoteStep step, const NoteBytes& now) {
    auto found = located(step, now, Strictness::whatCanBe);
    if (found && found->edits.size() == step.edits.size()) {
        step.edits = found->edits;
    }
    return step;
}

Result<NoteStep> leadingBack(const NoteStep& step, const NoteBytes& now) {
    auto back = adapted(inverse(step), now, Strictness::whatCanBe);
    return back ? Result<NoteStep>(withPlaces(*std::move(back), now)) : back;
}

}  // namespace

Result<Operation> prepared(const StepWriter& notes, Operation plan) {
    Trial trial(notes);
    const std::vector<NoteStep> steps = std::exchange(plan.steps, {});
    for (const NoteStep& step : steps) {
        auto tried = trial.make(step, [&](const NoteBytes& now) {
            return located(step, now, Strictness::allOrNothing);
        });
        if (!tried) {
            return tried.failure();
        }
        if (hasEffect(*tried)) {
            plan.steps.push_back(*std::move(tried));
        }
    }
    return plan;
}

Result<Operation> preparedUndo(const StepWriter& notes, const Operation& operation) {
    Trial trial(notes);
    Operation undo = operation;
    undo.number = 0;
    undo.undoes = operation.number;
    undo.cause = store::ChangeCause::undone;
    undo.steps.clear();
    undo.stepsMade = 0;
    for (auto step = operation.steps.rbegin(); step != operation.steps.rend(); ++step) {
        if (step->staysWhenUndone) {
            continue;
        }
        auto back =
            trial.make(*step, [&](const NoteBytes& now) { return leadingBack(*step, now); });
        if (!back && !isLost(back.failure().kind)) {
            return back.failure();
        }
        if (!back) {
            loggedOfNote(back.failure());
        } else if (hasEffect(*back)) {
            undo.steps.push_back(*std::move(back));
        }
    }
    return undo;
}

}  // namespace tessaly::tasks
