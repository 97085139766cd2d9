// SPDX-License-Identifier: MIT
#include "grammar/todo_helper.h"

#include "base/graphemes.h"
#include "base/utf8.h"
#include "grammar/calendar_day.h"
#include "grammar/date_tags.h"
#include "grammar/mark_finder.h"
#include "grammar/note_title.h"

namespace tessaly::grammar {

namespace {

using base::Day;
using base::LocalTime;

constexpr std::string_view repeatOpener = "@repeat(";

std::string_view textOf(const ScannedLine& line, const Mark& mark) {
    return line.text.substr(mark.start, mark.end - mark.start);
}

const Mark* firstOf(const ScannedLine& line, MarkKind kind) {
    for (const Mark& mark : line.marks) {
        if (mark.kind == kind) {
            return &mark;
        }
    }
    return nullptr;
}

bool isRecurring(const ScannedLine& line) {
    for (const Mark& mark : line.marks) {
        if (mark.kind == MarkKind::mention && textOf(line, mark).starts_with(repeatOpener)) {
            return true;
        }
    }
    return false;
}

std::optional<Day> scheduledDay(const ScannedLine& line) {
    return TodoHelper::firstDay(line, MarkKind::scheduleTag);
}

/// The completion tag counts only where no schedule tag names the day.
void setDate(Todo& todo, const ScannedLine& line, std::optional<Day> noteDay) {
    if (const auto day = scheduledDay(line)) {
        todo.date = LocalTime{*day};
        return;
    }
    if (const Mark* tag = firstOf(line, MarkKind::doneTag)) {
        const DoneTag done = DateTags::readDoneTag(textOf(line, *tag));
        if (done.day) {
            todo.hasTime = done.time.has_value();
            todo.date = done.time.value_or(LocalTime{*done.day});
            return;
        }
    }
    if (noteDay) {
        todo.date = LocalTime{*noteDay};
    }
}

std::optional<LocalTime> alarmOf(const ScannedLine& line, std::string_view content) {
    constexpr std::size_t length = 5;
    const auto day = scheduledDay(line);
    if (!day || tagTimeLength(content) == 0) {
        return std::nullopt;
    }
    const std::string_view behind = content.substr(length);
    if (!behind.empty() && behind[0] >= '0' && behind[0] <= '9') {
        return std::nullopt;
    }
    return LocalTime{*day, (content[0] - '0') * 10 + content[1] - '0',
                     (content[3] - '0') * 10 + content[4] - '0'};
}

/// Follows which line the lines behind it are indented under.
class Parents {
public:
    std::optional<std::size_t> parentOf(const Todo& todo) {
        if (todo.type == TodoType::empty) {
            return std::nullopt;
        }
        while (!_open.empty() && _open.back().indents >= todo.indents) {
            _open.pop_back();
        }
        std::optional<std::size_t> parent;
        if (!_open.empty()) {
            parent = _open.back().lineIndex;
        }
        _open.push_back({todo.indents, todo.lineIndex});
        return parent;
    }

private:
    struct Item {
        std::size_t indents;
        std::size_t lineIndex;
    };
    std::vector<Item> _open;  // with growing indents
};

}  // namespace

std::optional<Day> TodoHelper::firstDay(const ScannedLine& line, MarkKind kind) {
    const Mark* tag = firstOf(line, kind);
    return tag == nullptr ? std::nullopt : DateTags::dayOf(textOf(line, *tag));
}

Todo TodoHelper::todoOf(const ScannedLine& line, std::optional<Day> noteDay) {
    Todo todo;
    const std::string_view content = contentOf(line.text, line.line);
    todo.type = line.line.type;
    todo.content = content;
    todo.isRecurring = isRecurring(line);
    setDate(todo, line, noteDay);
    todo.alarm = alarmOf(line, content);
    todo.lineIndex = line.index;
    todo.indents = line.line.indents;
    todo.headingLevel = line.line.headingLevel;
    todo.isFirstLine = line.index == 0;
    todo.base = line.text;
    return todo;
}

std::vector<Todo> TodoHelper::parseNoteContent(const NoteText& note,
                                               const MarkerSettings& settings) {
    std::vector<Todo> todos;
    const NoteTitle title = titleOfNote(note);
    const auto noteDay = dayOfNotePath(note.filename);
    Parents parents;
    std::size_t location = 0;  // of the line, in UTF-16 units
    std::size_t counted = 0;   // bytes that `location` stands for
    NoteScanner scanner;
    scanner.start(note.text, settings);
    while (const ScannedLine* line = scanner.next()) {
        Todo todo = todoOf(*line, noteDay);
        location += base::utf16Length(note.text.substr(counted, line->start - counted));
        todo.textRange = {location, base::utf16Length(line->text)};
        location += todo.textRange.length;
        counted = line->start + line->text.size();
        todo.title = title.text;
        todo.titleRange = title.range;
        todo.filename = note.filename;
        todo.indentParentIndex = parents.parentOf(todo);
        todos.push_back(std::move(todo));
    }
    return todos;
}

Todo TodoHelper::parseLine(std::string_view line, const MarkerSettings& settings) {
    std::vector<Mark> marks;
    findMarks(line, marks);
    Todo todo = todoOf({0, 0, line, classifyLine(line, settings), marks}, std::nullopt);
    todo.textRange = {0, base::utf16Length(line)};
    todo.isFirstLine = false;
    return todo;
}

std::string TodoHelper::newTaskPrefix(const MarkerSettings& settings,
                                      base::TodoCharacter defaultTodoCharacter, int number) {
    if (settings.isAsteriskTodo) {
        return "* ";
    }
    if (settings.isDashTodo) {
        return "- ";
    }
    constexpr std::string_view box = " [ ] ";
    switch (defaultTodoCharacter) {
        case base::TodoCharacter::asterisk: return "*" + std::string(box);
        case base::TodoCharacter::dash: return "-" + std::string(box);
        case base::TodoCharacter::number: break;
    }
    return std::to_string(number) + "." + std::string(box);
}

std::string shortened(std::string_view content, int characters) {
    const std::string_view head =
        base::firstGraphemes(content, static_cast<std::size_t>(characters));
    return head.size() == content.size() ? std::string(content) : std::string(head) + "...";
}

}  // namespace tessaly::grammar
