// SPDX-License-Identifier: MIT
#include "tasks/operation_plan.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "store/note_document.h"
#include "tasks/note_step.h"
#include "tasks/operation_failures.h"
#include "tasks/undo_edits.h"

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
    if (!step.hashAfter.empty() && hashOf(now) == step.hashAfter) {
        auto back = adapted(inverse(step), now, Strictness::whatCanBe);
        return back ? Result<NoteStep>(withPlaces(*std::move(back), now)) : back;
    }
    NoteStep own = step;
    own.edits = ownEdits(step.edits, store::decodedText(now.value_or("")).value_or(""));
    return located(inverse(own), now, Strictness::whatCanBe);
}

/// What can be taken back.
struct WayBack {
    std::vector<NoteStep> steps;
    std::vector<std::string> notRestored;  ///< lines that would stay replaced
    std::vector<Failure> failures;         ///< of notes that are left out
};

Result<WayBack> wayBack(const StepWriter& notes, const std::vector<NoteStep>& steps) {
    Trial trial(notes);
    WayBack way;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        if (step->staysWhenUndone) {
            continue;
        }
        auto back =
            trial.make(*step, [&](const NoteBytes& now) { return leadingBack(*step, now); });
        if (!back && !isLost(back.failure().kind)) {
            return back.failure();
        }
        const auto lines = notRestored(step->edits, back ? back->edits : std::vector<LineEdit>());
        way.notRestored.insert(way.notRestored.end(), lines.begin(), lines.end());
        if (!back) {
            way.failures.push_back(back.failure());
        } else if (hasEffect(*back)) {
            way.steps.push_back(*std::move(back));
        }
    }
    return way;
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
    auto way = wayBack(notes, operation.steps);
    if (!way) {
        return way.failure();
    }
    const std::vector<Failure> failures = way->failures;
    if (!way->notRestored.empty()) {
        way = wayBack(notes, withoutCopiesOf(way->notRestored, operation.steps));
    }
    if (!way) {
        return way.failure();
    }
    for (const Failure& failure : failures) {
        loggedOfNote(failure);
    }
    Operation undo = operation;
    undo.number = 0;
    undo.undoes = operation.number;
    undo.cause = store::ChangeCause::undone;
    undo.stepsMade = 0;
    undo.steps = std::move(way).value().steps;
    return undo;
}

}  // namespace tessaly::tasks
