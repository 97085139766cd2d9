// SPDX-License-Identifier: MIT
#include "tasks/schedule_plan.h"

#include "base/localisation.h"
#include "grammar/line_scanner.h"
#include "tasks/copies_of_tasks.h"

namespace tessaly::tasks {
namespace {

using base::N_;
using grammar::TodoType;
using What = TaskChange::What;

TodoType typeOf(const NoteLine& line, const grammar::MarkerSettings& markers) {
    return grammar::classifyLine(line.text, markers).type;
}

}  // namespace

/// Where a task was scheduled to before, and what stands there of it.
struct SchedulePlan::Earlier {
    std::optional<base::Day> day;
    std::vector<std::string> lines;
    CopiesOfTask copies;
};

bool SchedulePlan::isCopied(const NoteLine& line, base::Day day) const {
    const auto source = dayOf(line.note);
    return source ? source != day : _settings.isCopyScheduleGeneralNoteTodos;
}

// `day`: where to look for a line that names no day, as its copy was made without links.
base::Result<SchedulePlan::Earlier> SchedulePlan::earlierOf(const NoteLine& line,
                                                            std::optional<base::Day> day) {
    const auto source = dayOf(line.note);
    const auto tagged = scheduledDay(line.text);
    // An open line that names a day may never have been copied; a link back proves that it was.
    const bool wasScheduled = typeOf(line, _settings.markers) == TodoType::scheduled;
    // What reads like a copy that nobody made is a task of its own.
    const bool mayHaveCopy = source || _settings.isCopyScheduleGeneralNoteTodos;
    if (!mayHaveCopy || (!wasScheduled && !(tagged && source))) {
        return Earlier{};
    }
    Earlier earlier{tagged ? tagged : day, {}, {}};
    if (!earlier.day || earlier.day == source) {
        return Earlier{};
    }
    const auto& lines = _plan.notes().linesIfAny(calendarNote(*earlier.day));
    if (!lines) {
        return lines.failure();
    }
    RewriteSettings then = _settings;
    then.isAppendScheduleLinks = tagged.has_value();
    earlier.lines = *lines;
    earlier.copies = findCopies(earlier.lines, copyForDay(line.text, source, then),
                                tagged ? source : std::nullopt, _settings.markers);
    return earlier;
}

void SchedulePlan::removeCopy(const Earlier& earlier) {
    const CopiesOfTask& copies = earlier.copies;
    const auto known = copies.open.empty() ? copies.changed : copies.open.front();
    if (!known) {
        return;
    }
    const NoteLine line{calendarNote(*earlier.day), *known, earlier.lines[*known]};
    // One that the user named meets its own change.
    if (copies.open.size() == 1 && !_plan.isNamed(line.note, line.index)) {
        _plan.remove(Phase::earlierCopies, line, What::removedCopy, earlier.day);
    } else {
        _plan.tell(line, What::leftCopy, earlier.day);
    }
}

void SchedulePlan::schedule(const PlannedChanges::Named& named, base::Day day) {
    const NoteLine& line = named.line;
    const TodoType type = typeOf(line, _settings.markers);
    if (type == TodoType::done || type == TodoType::cancelled) {
        return _plan.refuse(named, N_("{0}: a done or cancelled task cannot be scheduled"));
    }
    const bool isToBeCopied = isCopied(line, day);
    const auto earlier = earlierOf(line, isToBeCopied ? std::optional(day) : std::nullopt);
    const NoteName target = calendarNote(day);
    if (!earlier) {
        return _plan.refuse(named.task, earlier.failure());
    }
    if (isToBeCopied && !_plan.notes().linesIfAny(target)) {
        return _plan.refuse(named.task, _plan.notes().linesIfAny(target).failure());
    }
    const bool isSameDay = earlier->day == day;
    const bool standsThere = isSameDay && !earlier->copies.open.empty();
    const WriteDay writeDay =
        _settings.isAppendScheduleLinks || !isToBeCopied ? WriteDay::yes : WriteDay::no;
    const std::string after = scheduled(line.text, day, writeDay);
    if (after == line.text && (standsThere || !isToBeCopied)) {
        return _plan.tell(line, What::alreadyScheduled, day);
    }
    _plan.count(line);
    if (after == line.text) {
        _plan.tell(line, What::scheduled, day);
    } else {
        _plan.replace(line, after, What::scheduled, day);
    }
    if (isToBeCopied && !standsThere) {
        _plan.append(target, copyForDay(line.text, dayOf(line.note), _settings), What::copied, day);
    }
    if (!standsThere) {
        removeCopy(*earlier);
    }
}

void SchedulePlan::reopen(const PlannedChanges::Named& named) {
    const NoteLine& line = named.line;
    const TodoType type = typeOf(line, _settings.markers);
    const bool wasScheduled = type == TodoType::scheduled;
    if (!wasScheduled && type != TodoType::done && type != TodoType::cancelled) {
        return _plan.tell(line, What::alreadyOpen);
    }
    const auto earlier = wasScheduled ? earlierOf(line, std::nullopt) : Earlier{};
    if (!earlier) {
        return _plan.refuse(named.task, earlier.failure());
    }
    _plan.count(line);
    _plan.replace(line, reopened(line.text, _settings.markers), What::reopened);
    removeCopy(*earlier);
}

}  // namespace tessaly::tasks
