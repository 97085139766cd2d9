// SPDX-License-Identifier: MIT
#include "tasks/repeat_plan.h"

#include <algorithm>
#include <optional>

#include "base/localisation.h"
#include "base/utf8.h"
#include "tasks/task_rewrites.h"

namespace tessaly::tasks {

using base::N_;

void planRepeat(PlannedChanges& plan, const PlannedChanges::Named& named, RepeatInterval interval,
                int count) {
    const NoteLine& line = named.line;
    const auto first = dayOf(line.note);
    if (!first) {
        return plan.refuse(named, N_("{0}: only lines of a day's note can be repeated"));
    }
    if (base::trimmed(line.text).empty()) {
        return plan.refuse(named, N_("{0}: an empty line cannot be repeated"));
    }
    std::vector<base::Day> days;
    for (int i = 1; i <= count; ++i) {
        const auto day = repeatDay(*first, interval, i);
        if (!day) {
            return plan.refuse(named, N_("{0}: there is no note for so late a day"));
        }
        if (const auto& lines = plan.notes().linesIfAny(calendarNote(*day)); !lines) {
            return plan.refuse(named.task, lines.failure());
        }
        days.push_back(*day);
    }
    plan.count(line);
    for (int i = 1; i <= count; ++i) {
        const base::Day day = days[static_cast<std::size_t>(i - 1)];
        plan.append(calendarNote(day), repeatCopy(line.text, i, count, plan.markers()),
                    TaskChange::What::repeated, day);
    }
}

std::vector<NoteLine> laterRepeats(NoteTexts& notes, const NoteLine& line) {
    const auto first = dayOf(line.note);
    std::vector<NoteLine> found;
    if (!first || !findRepeatTag(line.text)) {
        return found;
    }
    const std::vector<base::Day>& days = notes.days();
    for (auto day = std::upper_bound(days.begin(), days.end(), *first); day != days.end(); ++day) {
        const NoteName note = calendarNote(*day);
        const auto& lines = notes.linesIfAny(note);
        for (std::size_t index = 0; lines && index < lines->size(); ++index) {
            if (isLaterRepeat(line.text, (*lines)[index])) {
                found.push_back({note, index, (*lines)[index]});
            }
        }
    }
    return found;
}

}  // namespace tessaly::tasks
