// SPDX-License-Identifier: MIT
#include "desktop/edit_history.h"

#include <utility>

#include "desktop/change_rebase.h"

namespace tessaly::desktop {

void EditHistory::clear() {
    _done.clear();
    _undone.clear();
}

void EditHistory::record(DocumentChanges inverse, Source source) {
    std::vector<Step>& steps = source == Source::undo ? _undone : _done;
    if (source == Source::newStep || source == Source::sameStep) {
        _undone.clear();
    }
    if (source == Source::newStep || steps.empty()) {
        steps.emplace_back();
    }
    steps.back().push_back(std::move(inverse));
}

void EditHistory::rebase(const DocumentChanges& others) {
    rebase(_done, others);
    rebase(_undone, others);
}

/// From the last change to the first, since each is for the text that the one behind it leaves.
void EditHistory::rebase(std::vector<Step>& steps, DocumentChanges others) {
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        for (auto change = step->rbegin(); change != step->rend(); ++change) {
            DocumentChanges below = rebased(others, *change, InsertOrder::othersFirst);
            *change = rebased(*change, others, InsertOrder::ownFirst);
            others = std::move(below);
        }
        std::erase_if(*step, [](const DocumentChanges& change) { return change.empty(); });
    }
    std::erase_if(steps, [](const Step& step) { return step.empty(); });
}

EditHistory::Step EditHistory::undo() {
    return take(_done, _undone);
}

EditHistory::Step EditHistory::redo() {
    return take(_undone, _done);
}

/// Where the step's way back is recorded it has a place of its own.
EditHistory::Step EditHistory::take(std::vector<Step>& from, std::vector<Step>& to) {
    while (!from.empty() && from.back().empty()) {
        from.pop_back();
    }
    if (from.empty()) {
        return {};
    }
    Step step = std::move(from.back());
    from.pop_back();
    to.emplace_back();
    return step;
}

}  // namespace tessaly::desktop
