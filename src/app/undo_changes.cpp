// SPDX-License-Identifier: MIT
#include "app/undo_changes.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "base/localisation.h"

namespace tessaly::app {
namespace {

using base::Failure;
using base::N_;
using base::tr;

constexpr const char* copiesStay =
    N_("The scheduled task in the other day can't be deleted if no date links were added.");
constexpr const char* copiesStayHint =
    N_("Check Preferences > Todo > 'Append links when scheduling'.");
constexpr const char* undoneInPart = N_("Couldn't fully undo this");

/// Whether a copy in another day's note went with a scheduling.
bool undoingTookCopyAway(const UndoneOperation& undone) {
    const auto removes = [](const tasks::LineEdit& edit) {
        return edit.kind == tasks::LineEdit::Kind::remove;
    };
    return undone.operation.cause == store::ChangeCause::scheduled &&
           std::any_of(undone.undone.steps.begin(), undone.undone.steps.end(),
                       [&](const tasks::NoteStep& step) {
                           return std::any_of(step.edits.begin(), step.edits.end(), removes);
                       });
}

/// Once: should the setting not be stored, the user reads it another time.
void explainScheduling(Services& services) {
    services.ports().questions(
        {tr("Undoing a scheduling also removes the task's copy in the other day's note."), {}, {}});
    (void)services.globals().set("isFirstTimeUndoScheduling", "off");
}

void tell(Services& services, const std::vector<UndoneOperation>& undone) {
    const auto isAny = [&](const auto& holds) {
        return std::any_of(undone.begin(), undone.end(), holds);
    };
    if (isAny(undoingTookCopyAway) && services.globals().isFirstTimeUndoScheduling()) {
        explainScheduling(services);
    }
    if (isAny([](const UndoneOperation& one) { return one.undone.leftCopies; })) {
        services.ports().questions({tr(copiesStay), tr(copiesStayHint), {}});
    }
    if (isAny([](const UndoneOperation& one) { return !one.undone.isComplete; })) {
        services.ports().questions(
            {tr(undoneInPart), tr("Lines that were changed since then stay as they are."), {}});
    }
}

}  // namespace

base::Result<std::vector<tasks::Operation>> listUndo(Services& services, std::size_t most) {
    return services.operationJournal()->operations(most);
}

base::Result<UndoOutcome> undo(Services& services, std::size_t count) {
    const auto journal = services.operationJournal();
    auto operations = journal->operations(count);
    if (!operations) {
        return operations.failure();
    }
    if (operations->empty()) {
        return Failure{Failure::Kind::notFound, tr("there is nothing to undo")};
    }
    tasks::OperationRunner runner = services.operationRunner(*journal);
    UndoOutcome outcome;
    for (tasks::Operation& operation : std::move(operations).value()) {
        auto undone = runner.undo(operation);
        if (!undone) {
            outcome.failure = undone.failure();
            break;
        }
        outcome.undone.push_back({std::move(operation), std::move(undone).value()});
    }
    tell(services, outcome.undone);
    return outcome;
}

}  // namespace tessaly::app
