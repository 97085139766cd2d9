// SPDX-License-Identifier: MIT
#include "tasks/made_places.h"

#include <algorithm>
#include <utility>

#include "tasks/note_step.h"

namespace tessaly::tasks {
namespace {

using Kind = LineEdit::Kind;

bool isSameEdit(const LineEdit& a, const LineEdit& b) {
    return (a.kind == Kind::remove) == (b.kind == Kind::remove) && a.before == b.before &&
           a.after == b.after;
}

/// Takes, for each planned edit, the first one like it that was made and that is not taken.
std::vector<LineEdit> matched(std::span<const LineEdit> planned, std::vector<LineEdit> made) {
    if (std::equal(planned.begin(), planned.end(), made.begin(), made.end(), isSameEdit)) {
        return made;
    }
    std::vector<LineEdit> edits;
    for (const LineEdit& edit : planned) {
        const auto found = std::find_if(made.begin(), made.end(), [&](const LineEdit& other) {
            return isSameEdit(edit, other);
        });
        edits.push_back(found == made.end() ? edit : *found);
        if (found != made.end()) {
            made.erase(found);
        }
    }
    return edits;
}

std::size_t afterStep(const NoteStep& step, std::size_t index) {
    std::size_t place = index;
    std::vector<std::size_t> added;
    for (const LineEdit& edit : step.edits) {
        if (edit.kind == Kind::remove) {
            place -= edit.index < index ? 1 : 0;
        } else if (edit.kind != Kind::replace) {
            added.push_back(edit.newIndex);
        }
    }
    std::sort(added.begin(), added.end());
    for (const std::size_t line : added) {
        place += line <= place ? 1 : 0;
    }
    return place;
}

}  // namespace

MadePlaces::MadePlaces(std::span<const NoteStep> planned, std::span<const NoteStep> made) {
    std::vector<bool> isTaken(made.size(), false);
    for (const NoteStep& step : planned) {
        NoteStep& known = _steps.emplace_back(step);
        for (std::size_t i = 0; i < made.size(); ++i) {
            if (!isTaken[i] && isSameNote(step, made[i])) {
                isTaken[i] = true;
                known.edits = matched(step.edits, made[i].edits);
                break;
            }
        }
    }
}

std::size_t MadePlaces::ofLine(const NoteName& note, std::size_t index) const {
    return through(note, 0, index);
}

std::size_t MadePlaces::ofEdit(std::size_t step, std::size_t edit) const {
    const LineEdit& made = _steps[step].edits[edit];
    return made.kind == Kind::remove
               ? made.index
               : through({_steps[step].type, _steps[step].filename}, step + 1, made.newIndex);
}

std::size_t MadePlaces::through(const NoteName& note, std::size_t firstStep,
                                std::size_t index) const {
    for (std::size_t i = firstStep; i < _steps.size(); ++i) {
        if (_steps[i].type == note.type && _steps[i].filename == note.filename) {
            index = afterStep(_steps[i], index);
        }
    }
    return index;
}

}  // namespace tessaly::tasks
