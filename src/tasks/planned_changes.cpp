// SPDX-License-Identifier: MIT
#include "tasks/planned_changes.h"

#include <algorithm>
#include <numeric>

#include "base/utf8.h"
#include "grammar/line_scanner.h"
#include "grammar/todo_helper.h"
#include "tasks/made_places.h"
#include "tasks/refusals.h"
#include "tasks/task_lookup.h"

namespace tessaly::tasks {

using Kind = LineEdit::Kind;

std::vector<PlannedChanges::Named> PlannedChanges::find(std::span<const TaskReference> tasks) {
    std::vector<Named> found;
    for (const TaskReference& task : tasks) {
        const auto& lines = _notes.lines(task.note);
        const auto index =
            lines ? findLine(*lines, task, _markers) : base::Result<std::size_t>(lines.failure());
        if (!index) {
            refuse(task, index.failure());
        } else if (_named.emplace(task.note, *index).second) {
            found.push_back({task, {task.note, *index, (*lines)[*index]}});
        }
    }
    return found;
}

void PlannedChanges::refuse(const Named& line, const char* english) {
    refuse(line.task, lineRefused(line.line.note, line.line.index, english));
}

void PlannedChanges::count(const NoteLine& line) {
    if (_tasks++ == 0) {
        const auto lineClass = grammar::classifyLine(line.text, _markers);
        _title = grammar::shortened(base::trimmed(grammar::contentOf(line.text, lineClass)),
                                    grammar::Todo::defaultContentLength);
    }
}

void PlannedChanges::replace(const NoteLine& line, const std::string& after, What what, Day day) {
    LineEdit replacement;
    replacement.kind = Kind::replace;
    replacement.index = replacement.newIndex = line.index;
    replacement.before = line.text;
    replacement.after = after;
    edit(Phase::sources, line.note, std::move(replacement), what, day);
}

void PlannedChanges::remove(Phase phase, const NoteLine& line, What what, Day day) {
    if (!_removed.emplace(line.note, line.index).second) {
        return;
    }
    LineEdit removal;
    removal.kind = Kind::remove;
    removal.index = line.index;
    removal.before = line.text;
    edit(phase, line.note, std::move(removal), what, day);
}

void PlannedChanges::append(const NoteName& note, const std::string& line, What what, Day day) {
    LineEdit addition;
    addition.kind = Kind::append;
    addition.after = line;
    edit(Phase::copies, note, std::move(addition), what, day);
}

void PlannedChanges::edit(Phase phase, const NoteName& note, LineEdit edit,
                          std::optional<What> what, Day day) {
    const std::size_t at = stepOf(phase, note);
    std::vector<LineEdit>& edits = _steps[at].step.edits;
    if (what) {
        const std::string& line = edit.kind == Kind::remove ? edit.before : edit.after;
        _told.push_back({{*what, note, edit.index, line, day}, EditPlace{at, edits.size()}});
    }
    edits.push_back(std::move(edit));
}

void PlannedChanges::tell(const NoteLine& line, What what, Day day) {
    _told.push_back({{what, line.note, line.index, line.text, day}, std::nullopt});
}

std::size_t PlannedChanges::stepOf(Phase phase, const NoteName& note) {
    const auto [known, isNew] = _stepOf.try_emplace({phase, note}, _steps.size());
    if (isNew) {
        NoteStep step;
        step.type = note.type;
        step.filename = note.filename;
        step.staysWhenUndone = phase == Phase::copies && _copiesStay;
        _steps.push_back({phase, std::move(step)});
    }
    return known->second;
}

std::vector<std::size_t> PlannedChanges::order() const {
    std::vector<std::size_t> order(_steps.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
        return _steps[a].phase < _steps[b].phase;
    });
    return order;
}

Operation PlannedChanges::operation(base::Instant now, store::ChangeCause cause, Day day) const {
    Operation operation;
    operation.time = now;
    operation.cause = cause;
    operation.day = day;
    operation.tasks = _tasks;
    operation.title = _title;
    for (const std::size_t at : order()) {
        operation.steps.push_back(_steps[at].step);
    }
    return operation;
}

TaskOutcome PlannedChanges::outcome(const Operation* made) const {
    TaskOutcome outcome;
    outcome.refusals = _refusals;
    std::vector<NoteStep> planned;
    std::vector<std::size_t> placeOfStep(_steps.size());
    for (const std::size_t at : order()) {
        placeOfStep[at] = planned.size();
        planned.push_back(_steps[at].step);
    }
    const MadePlaces places(planned, made != nullptr ? made->steps : std::vector<NoteStep>());
    for (const Told& told : _told) {
        TaskChange& change = outcome.changes.emplace_back(told.change);
        change.lineIndex = told.edit ? places.ofEdit(placeOfStep[told.edit->step], told.edit->edit)
                                     : places.ofLine(change.note, change.lineIndex);
    }
    if (made != nullptr) {
        outcome.operation = made->number;
    }
    return outcome;
}

}  // namespace tessaly::tasks
