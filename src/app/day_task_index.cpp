// SPDX-License-Identifier: MIT
#include "app/day_task_index.h"

#include <algorithm>
#include <iterator>

#include "base/inline_executor.h"

namespace tessaly::app {
namespace {

using std::chrono::sys_days;

template <class Records>
store::DayTasks tasksIn(const Records& records) {
    store::DayTasks tasks;
    for (const auto& [note, record] : records) {
        (void)tasks.addRecord(note.first, note.second, record);  // we made it ourselves
    }
    return tasks;
}

base::Day dayAfter(sys_days day) {
    return base::Day(day + std::chrono::days(1));
}

/// Whether a task's copy stands in another day's note is known there alone; but what is planned for
/// earlier days counts the same both times.
std::size_t countOverdue(const store::DayTasks& tasks, sys_days day) {
    base::InlineExecutor here;
    return tasks.overdue(dayAfter(day), here, 0).total -
           tasks.overdue(base::Day(day), here, 0).total;
}

std::vector<store::NoteTask> overdueOf(const store::DayTasks& tasks, sys_days day) {
    base::InlineExecutor here;
    auto found = tasks.overdue(dayAfter(day), here).tasks;
    std::erase_if(found, [&](const store::NoteTask& task) { return task.day != base::Day(day); });
    return found;
}

}  // namespace

void DayTaskIndex::put(base::NoteType type, std::string_view filename, std::string_view text) {
    store::scanDayTasks(type, filename, text, _markers, _scanner, _found);
    const auto known = _notes.find(NoteKey(type, filename));
    if (_found.lines.empty() && known == _notes.end()) {
        return;
    }
    Days records = recordsOf(_found);
    const auto note =
        known != _notes.end() ? known : _notes.try_emplace({type, std::string(filename)}).first;
    for (const sys_days day : note->second) {
        if (!records.contains(day)) {
            remove(day, note->first);
        }
    }
    note->second.clear();
    for (auto& [day, record] : records) {
        note->second.push_back(day);
        set(day, note->first, std::move(record));
    }
    if (records.empty()) {
        _notes.erase(note);
    }
}

DayTaskIndex::Days DayTaskIndex::recordsOf(const store::DayTaskLines& lines) const {
    Days records;
    if (lines.noteDay && !lines.lines.empty()) {
        records[*lines.noteDay] = store::recordOfDayTasks(lines);
    }
    std::map<sys_days, store::DayTaskLines> byDay;
    for (const store::DayTaskLine& line : lines.lines) {
        if (line.scheduledTo && line.scheduledTo != lines.noteDay) {
            store::DayTaskLines& there = byDay[*line.scheduledTo];
            there.noteDay = lines.noteDay;
            there.title = lines.title;
            there.lines.push_back(line);
        }
    }
    for (const auto& [day, scheduled] : byDay) {
        records[day] = store::recordOfDayTasks(scheduled);
    }
    return records;
}

void DayTaskIndex::set(sys_days day, const NoteKey& note, std::string record) {
    OfDay& there = _days[day];
    std::string& held = there.records[note];
    if (held != record) {
        held = std::move(record);
        there.overdue.reset();
    }
}

void DayTaskIndex::remove(sys_days day, const NoteKey& note) {
    const auto there = _days.find(day);
    there->second.records.erase(note);
    there->second.overdue.reset();
    if (there->second.records.empty()) {
        _days.erase(there);
    }
}

store::DayTasks DayTaskIndex::ofDay(base::Day day) const {
    const auto there = _days.find(day);
    return there == _days.end() ? store::DayTasks() : tasksIn(there->second.records);
}

store::OverdueTasks DayTaskIndex::overdue(base::Day today, std::size_t most) {
    store::OverdueTasks all;
    for (auto day = _days.begin(); day != _days.end() && day->first < sys_days(today); ++day) {
        OfDay& there = day->second;
        if (!there.overdue) {
            there.overdue = countOverdue(tasksIn(there.records), day->first);
        }
        all.total += *there.overdue;
        if (*there.overdue > 0 && all.tasks.size() < most) {
            auto found = overdueOf(tasksIn(there.records), day->first);
            found.resize(std::min(found.size(), most - all.tasks.size()));
            std::move(found.begin(), found.end(), std::back_inserter(all.tasks));
        }
    }
    return all;
}

}  // namespace tessaly::app
