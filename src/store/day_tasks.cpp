// SPDX-License-Identifier: MIT
#include "store/day_tasks.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/todo_helper.h"
#include "store/note_names.h"
#include "store/note_tags.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using grammar::MarkKind;
using grammar::ScannedLine;
using grammar::TodoType;

// A quick look that spares most general notes their scan.
bool mayHoldScheduleTag(std::string_view text) {
    for (std::size_t at = text.find('>'); at != text.npos; at = text.find('>', at + 1)) {
        if (at + 1 < text.size() && text[at + 1] >= '0' && text[at + 1] <= '9') {
            return true;
        }
    }
    return false;
}

// The first tag of a kind decides, also when it names no real day.
std::optional<base::Day> firstDay(const ScannedLine& line, MarkKind kind) {
    for (const grammar::Mark& mark : line.marks) {
        if (mark.kind == kind) {
            return dayOfMark(line, mark);
        }
    }
    return std::nullopt;
}

// What an original and its copy have in common.
std::string bareContent(std::string_view text, const grammar::LineClass& line) {
    const std::string_view content = grammar::contentOf(text, line);
    if (content.find_first_of("<>@") == content.npos) {
        return std::string(base::trimmed(content));
    }
    const std::string bare =
        grammar::DateTags::removeDateTags(grammar::DateTags::findAndRemoveDoneTag(content));
    return std::string(base::trimmed(bare));
}

std::optional<base::Day> backLinkDay(std::string_view text) {
    std::vector<grammar::Mark> marks;
    grammar::findMarks(text, marks);
    return firstDay({0, 0, text, {}, marks}, MarkKind::backLink);
}

}  // namespace

void DayTasks::add(base::NoteType type, std::string_view filename, std::string_view text,
                   const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner) {
    const auto noteDay =
        type == base::NoteType::calendar ? dayOfCalendarFilename(filename) : std::nullopt;
    if (!noteDay && !mayHoldScheduleTag(text)) {
        return;
    }
    std::shared_ptr<const Note> note;
    std::vector<Line>* ofDay = nullptr;
    scanner.start(text, settings);
    while (const ScannedLine* scanned = scanner.next()) {
        if (!grammar::isTask(scanned->line.type)) {
            continue;
        }
        const auto scheduledTo = firstDay(*scanned, MarkKind::scheduleTag);
        if (!scheduledTo && !noteDay) {
            continue;
        }
        if (!note) {
            const std::string_view name = baseName(filename);
            note = std::make_shared<Note>(
                Note{type, std::string(filename),
                     noteDay ? std::string(name) : grammar::noteTitle(text, name), noteDay});
            ofDay = noteDay ? &_byNoteDay[*noteDay] : nullptr;
        }
        Line line{note, std::string(scanned->text), scanned->line, scanned->index, scheduledTo};
        if (ofDay) {
            ofDay->push_back(line);
        }
        if (scheduledTo) {
            _scheduled[*scheduledTo].push_back(std::move(line));
        }
    }
}

void DayTasks::join(DayTasks&& other) {
    const auto joinDays = [](auto& days, auto& others) {
        days.merge(others);
        for (auto& [day, lines] : others) {
            auto& known = days[day];
            std::move(lines.begin(), lines.end(), std::back_inserter(known));
        }
        others.clear();
    };
    joinDays(_byNoteDay, other._byNoteDay);
    joinDays(_scheduled, other._scheduled);
}

// The tasks of one day's own note, as copies of lines that are scheduled to that day. They are
// gathered when the first such line asks.
class DayTasks::Copies {
public:
    Copies(const DayTasks& tasks, base::Day day) : _tasks(tasks), _day(day) {}

    bool hasCopyOf(const Line& line) {
        const auto& source = line.note->day;
        if (line.line.type != TodoType::scheduled) {
            return false;
        }
        if (!_sources) {
            gather();
        }
        const auto found = _sources->find(bareContent(line.text, line.line));
        if (found == _sources->end()) {
            return false;
        }
        const auto& days = found->second;
        return !source || days.contains(source) || days.contains(std::nullopt);
    }

private:
    void gather() {
        _sources.emplace();
        for (const Line& line : _tasks.ofDay(_day)) {
            (*_sources)[bareContent(line.text, line.line)].insert(backLinkDay(line.text));
        }
    }

    const DayTasks& _tasks;
    const base::Day _day;
    // The days that link back, by content.
    std::optional<std::unordered_map<std::string, std::set<std::optional<base::Day>>>> _sources;
};

std::vector<NoteTask> DayTasks::ofNote(base::Day day) const {
    const std::vector<Line>& lines = ofDay(day);
    std::vector<NoteTask> tasks;
    std::transform(lines.begin(), lines.end(), std::back_inserter(tasks), taskOf);
    return tasks;
}

std::vector<NoteTask> DayTasks::scheduledTo(base::Day day) const {
    std::vector<const Line*> lines;
    const auto found = _scheduled.find(day);
    if (found != _scheduled.end()) {
        Copies copies(*this, day);
        for (const Line& line : found->second) {
            if (line.note->day != day && !copies.hasCopyOf(line)) {
                lines.push_back(&line);
            }
        }
    }
    return inOrder(std::move(lines), everyTask);
}

OverdueTasks DayTasks::overdue(base::Day today, std::size_t most) const {
    std::vector<const Line*> lines;
    for (auto day = _byNoteDay.begin(); day != _byNoteDay.lower_bound(today); ++day) {
        for (const Line& line : day->second) {
            if (line.line.type == TodoType::open && !line.scheduledTo) {
                lines.push_back(&line);
            }
        }
    }
    for (auto day = _scheduled.begin(); day != _scheduled.lower_bound(today); ++day) {
        Copies copies(*this, day->first);
        for (const Line& line : day->second) {
            const bool standsForItself =
                line.line.type == TodoType::scheduled && !line.note->day && !copies.hasCopyOf(line);
            if (line.line.type == TodoType::open || standsForItself) {
                lines.push_back(&line);
            }
        }
    }
    const std::size_t total = lines.size();
    return {inOrder(std::move(lines), most), total};
}

// By planned day, then by file and line, whatever order the notes were read in.
std::vector<NoteTask> DayTasks::inOrder(std::vector<const Line*> lines, std::size_t most) {
    const auto place = [](const Line* line) {
        return std::tuple(plannedDay(*line), base::folderName(line->note->type),
                          std::string_view(line->note->filename), line->index);
    };
    const std::size_t count = std::min(most, lines.size());
    std::partial_sort(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(count),
                      lines.end(),
                      [&](const Line* a, const Line* b) { return place(a) < place(b); });
    lines.resize(count);
    std::vector<NoteTask> tasks;
    tasks.reserve(count);
    for (const Line* line : lines) {
        tasks.push_back(taskOf(*line));
    }
    return tasks;
}

std::optional<base::Day> DayTasks::plannedDay(const Line& line) {
    return line.scheduledTo ? line.scheduledTo : line.note->day;
}

const std::vector<DayTasks::Line>& DayTasks::ofDay(base::Day day) const {
    static const std::vector<Line> none;
    const auto found = _byNoteDay.find(day);
    return found == _byNoteDay.end() ? none : found->second;
}

NoteTask DayTasks::taskOf(const Line& line) {
    const Note& note = *line.note;
    std::vector<grammar::Mark> marks;
    grammar::findMarks(line.text, marks);
    NoteTask task{
        note.type, note.filename, note.day,
        grammar::TodoHelper::todoOf({line.index, 0, line.text, line.line, marks}, note.day),
        plannedDay(line)};
    task.todo.title = note.title;
    task.todo.filename = joined(base::folderName(note.type), note.filename);
    return task;
}

}  // namespace tessaly::store
