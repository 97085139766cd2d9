// SPDX-License-Identifier: MIT
#include "store/note_task_counts.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "grammar/todo_helper.h"
#include "store/day_tasks.h"
#include "store/note_names.h"

namespace tessaly::store {
namespace {

using grammar::TodoType;

std::string_view textOf(const LoadedNote& note, const DatedLine& line) {
    return note.content.view().substr(line.start, line.length);
}

std::uint8_t atMost255(std::size_t count) {
    return static_cast<std::uint8_t>(std::min<std::size_t>(count, 255));
}

}  // namespace

std::vector<NoteTaskCounts::ScheduledLine> NoteTaskCounts::scheduledLines(const LoadedNote& note) {
    std::vector<ScheduledLine> lines;
    std::vector<grammar::Mark> marks;
    for (std::size_t index = 0; index < note.datedLines.size(); ++index) {
        const DatedLine& dated = note.datedLines[index];
        const std::string_view text = textOf(note, dated);
        grammar::findMarks(text, marks);
        const auto day = grammar::TodoHelper::firstDay({0, 0, text, dated.line, marks},
                                                       grammar::MarkKind::scheduleTag);
        if (day) {
            lines.push_back({*day, static_cast<std::uint32_t>(index)});
        }
    }
    return lines;
}

void ChangedTasks::add(ChangedTasks&& more) {
    std::move(more.notes.begin(), more.notes.end(), std::back_inserter(notes));
    std::move(more.days.begin(), more.days.end(), std::back_inserter(days));
}

void NoteTaskCounts::build(const GeneralNotes& notes, base::Executor& executor) {
    struct Found {
        const GeneralNotes::Pointer* note;
        std::vector<ScheduledLine> lines;
    };
    std::vector<std::vector<Found>> found(notes.chunks());
    base::parallelFor(executor, notes.chunks(), [&](std::size_t index) {
        for (const GeneralNotes::Pointer& note : notes.chunk(index)) {
            if (auto lines = scheduledLines(note->note); !lines.empty()) {
                found[index].push_back({&note, std::move(lines)});
            }
        }
    });
    _days.clear();
    for (const auto& chunk : found) {
        for (const Found& each : chunk) {
            add(*each.note, each.lines);
        }
    }
}

std::vector<base::Day> NoteTaskCounts::replace(const ChangedTasks& changes) {
    std::set<base::Day> days;
    for (const base::Day day : changes.days) {
        if (hasTasks(day)) {
            days.insert(day);
        }
    }
    for (const ChangedTasks::Note& note : changes.notes) {
        for (const base::Day day : replace(note.before, note.after)) {
            days.insert(day);
        }
    }
    return {days.begin(), days.end()};
}

std::vector<base::Day> NoteTaskCounts::replace(const GeneralNotes::Pointer& before,
                                               const GeneralNotes::Pointer& after) {
    using Task = std::tuple<base::Day, TodoType, std::string_view>;
    const auto tasksOf = [](const GeneralNotes::Pointer& note,
                            const std::vector<ScheduledLine>& lines) {
        std::vector<Task> tasks;
        for (const ScheduledLine& line : lines) {
            const DatedLine& dated = note->note.datedLines[line.dated];
            tasks.emplace_back(line.day, dated.line.type, textOf(note->note, dated));
        }
        std::sort(tasks.begin(), tasks.end());
        return tasks;
    };
    const auto linesBefore = before ? scheduledLines(before->note) : std::vector<ScheduledLine>();
    const auto linesAfter = after ? scheduledLines(after->note) : std::vector<ScheduledLine>();
    if (linesBefore.empty() && linesAfter.empty()) {
        return {};
    }
    remove(before, linesBefore);
    add(after, linesAfter);
    std::vector<Task> different;
    const std::vector<Task> tasksBefore = tasksOf(before, linesBefore);
    const std::vector<Task> tasksAfter = tasksOf(after, linesAfter);
    std::set_symmetric_difference(tasksBefore.begin(), tasksBefore.end(), tasksAfter.begin(),
                                  tasksAfter.end(), std::back_inserter(different));
    std::vector<base::Day> days;
    for (const auto& [day, type, text] : different) {
        if (days.empty() || days.back() != day) {
            days.push_back(day);
        }
    }
    return days;
}

void NoteTaskCounts::add(const GeneralNotes::Pointer& note,
                         const std::vector<ScheduledLine>& lines) {
    for (const ScheduledLine& line : lines) {
        const TodoType type = note->note.datedLines[line.dated].line.type;
        if (type == TodoType::scheduled) {
            Originals& originals = _days[line.day].originals[note.get()];
            originals.note = note;
            originals.dated.push_back(line.dated);
        } else if (type == TodoType::open) {
            ++_days[line.day].open;
        } else if (type == TodoType::done) {
            ++_days[line.day].done;
        }
    }
}

void NoteTaskCounts::remove(const GeneralNotes::Pointer& note,
                            const std::vector<ScheduledLine>& lines) {
    for (const ScheduledLine& line : lines) {
        const auto at = _days.find(line.day);
        if (at == _days.end()) {
            continue;
        }
        const TodoType type = note->note.datedLines[line.dated].line.type;
        at->second.open -= type == TodoType::open;
        at->second.done -= type == TodoType::done;
        at->second.originals.erase(note.get());
        if (at->second.empty()) {
            _days.erase(at);
        }
    }
}

std::vector<base::Day> NoteTaskCounts::days() const {
    std::vector<base::Day> days;
    std::transform(_days.begin(), _days.end(), std::back_inserter(days),
                   [](const auto& entry) { return entry.first; });
    return days;
}

NoteTaskCounts::Counts NoteTaskCounts::countsOf(base::Day day, const CalendarNote* note,
                                                const grammar::MarkerSettings& settings) const {
    const auto at = _days.find(day);
    if (at == _days.end()) {
        return {};
    }
    Counts counts{atMost255(at->second.open), atMost255(at->second.done)};
    if (at->second.originals.empty()) {
        return counts;
    }
    // The originals of a note are a text of their own: the rest of it does not matter here.
    DayTasks tasks;
    grammar::NoteScanner scanner;
    std::string text;
    for (const auto& [key, originals] : at->second.originals) {
        const LoadedNote& owner = originals.note->note;
        text.clear();
        for (const std::uint32_t dated : originals.dated) {
            text.append(textOf(owner, owner.datedLines[dated])) += '\n';
        }
        tasks.add(base::NoteType::note, owner.filename, text, settings, scanner);
    }
    if (note != nullptr) {
        tasks.add(base::NoteType::calendar, note->model.filename, note->content, settings, scanner);
    }
    counts.open = saturatingAdd(counts.open, atMost255(tasks.countGeneral(day).open));
    return counts;
}

}  // namespace tessaly::store
