// SPDX-License-Identifier: MIT
#include "cli/json_records.h"

#include <array>

#include "base/enum_names.h"
#include "base/note_type.h"
#include "cli/json_times.h"
#include "cli/task_lines.h"

namespace tessaly::cli {

namespace {

std::optional<std::string> dateText(const grammar::Todo& todo, ports::Clock& clock) {
    if (!todo.date) {
        return std::nullopt;
    }
    return todo.hasTime ? rfc3339(*todo.date, clock) : base::tagText(todo.date->day);
}

std::optional<std::string> alarmText(const grammar::Todo& todo, ports::Clock& clock) {
    return todo.alarm ? std::optional{rfc3339(*todo.alarm, clock)} : std::nullopt;
}

/// What a line tells of itself, without the note around it.
JsonObject lineRecord(const grammar::Todo& todo, ports::Clock& clock) {
    JsonObject object;
    object.add("type", base::rawValue(todo.type))
        .add("content", todo.content)
        .add("date", dateText(todo, clock))
        .add("isRecurring", todo.isRecurring)
        .add("alarm", alarmText(todo, clock))
        .add("hasTime", todo.hasTime)
        .add("lineIndex", todo.lineIndex)
        .add("indents", todo.indents)
        .add("base", todo.base);
    return object;
}

std::vector<JsonObject> taskRecords(const std::vector<store::NoteTask>& tasks,
                                    ports::Clock& clock) {
    std::vector<JsonObject> records;
    records.reserve(tasks.size());
    for (const store::NoteTask& task : tasks) {
        records.push_back(recordOf(task, clock));
    }
    return records;
}

}  // namespace

std::optional<std::string> dayText(std::optional<base::Day> day) {
    return day ? std::optional{base::tagText(*day)} : std::nullopt;
}

JsonObject recordOf(base::TextRange range) {
    JsonObject object;
    object.add("location", range.location).add("length", range.length);
    return object;
}

JsonObject recordOf(const grammar::Todo& todo, ports::Clock& clock) {
    JsonObject object;
    object.add("type", base::rawValue(todo.type))
        .add("content", todo.content)
        .add("date", dateText(todo, clock))
        .add("title", todo.title)
        .add("titleRange", recordOf(todo.titleRange))
        .add("isRecurring", todo.isRecurring)
        .add("alarm", alarmText(todo, clock))
        .add("hasTime", todo.hasTime)
        .add("textRange", recordOf(todo.textRange))
        .add("lineIndex", todo.lineIndex)
        .add("indents", todo.indents)
        .add("indentParentIndex", todo.indentParentIndex)
        .add("headingLevel", todo.headingLevel)
        .add("isFirstLine", todo.isFirstLine)
        .add("filename", todo.filename)
        .add("base", todo.base)
        .add("maxContentLength", todo.maxContentLength);
    return object;
}

JsonObject recordOf(const store::NoteTask& task, ports::Clock& clock) {
    JsonObject object;
    object.add("address", addressOf(task))
        .add("type", base::rawValue(task.type))
        .add("filename", task.filename)
        .add("noteDay", dayText(task.noteDay))
        .add("todo", lineRecord(task.todo, clock))
        .add("day", dayText(task.day));
    return object;
}

JsonObject recordOf(const app::DayView& view, ports::Clock& clock) {
    JsonObject object;
    object.add("day", base::tagText(view.day))
        .add("name", view.name)
        .add("heading", view.heading)
        .add("hasNote", view.hasNote)
        .add("tasks", taskRecords(view.tasks, clock))
        .add("scheduled", taskRecords(view.scheduled, clock))
        .add("overdue", taskRecords(view.overdue.tasks, clock));
    return object;
}

void addModel(JsonObject& object, const store::NoteModel& model) {
    struct Counter {
        std::string_view name;
        std::uint8_t store::NoteModel::*value;
    };
    using M = store::NoteModel;
    constexpr std::array counters{
        Counter{"numOpenTodos", &M::numOpenTodos},
        Counter{"numScheduledTodos", &M::numScheduledTodos},
        Counter{"numDoneTodos", &M::numDoneTodos},
        Counter{"numCancelledTodos", &M::numCancelledTodos},
        Counter{"numClosedTodos", &M::numClosedTodos},
    };
    for (const Counter& counter : counters) {
        object.add(counter.name, model.*counter.value);
    }
    object.add("atTags", model.atTags).add("hashTags", model.hashTags);
}

JsonObject recordOf(const app::NoteRow& row) {
    JsonObject object;
    object.add("type", base::rawValue(row.type))
        .add("filename", row.filename)
        .add("title", row.title)
        .add("date", dayText(row.model.date))
        .add("changed", rfc3339(row.changed))
        .add("created", rfc3339(row.created));
    addModel(object, row.model);
    return object;
}

JsonObject recordOf(const app::TagRow& row) {
    JsonObject object;
    object.add("tag", row.tag).add("notes", row.notes);
    return object;
}

JsonObject recordOf(const app::Finding& finding) {
    JsonObject object;
    object.add("level", levelName(finding.level))
        .add("what", finding.what)
        .add("text", finding.text)
        .add("path", finding.path)
        .add("command", finding.command);
    return object;
}

std::string_view levelName(app::Finding::Level level) {
    constexpr std::array<std::string_view, 3> names{"fine", "note", "warning"};
    return names[static_cast<std::size_t>(level)];
}

}  // namespace tessaly::cli
