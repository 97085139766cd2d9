// SPDX-License-Identifier: MIT
#include "cli/task_lines.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "cli/json_records.h"
#include "cli/safe_text.h"
#include "cli/short_address.h"
#include "grammar/line_scanner.h"

namespace tessaly::cli {

namespace {

using grammar::TodoType;

struct StateSign {
    TodoType type;
    Style style;
    const char* sign;
    const char* box;
};

constexpr std::array stateSigns{
    StateSign{TodoType::open, Style::open, "○", "[ ]"},
    StateSign{TodoType::done, Style::done, "✓", "[x]"},
    StateSign{TodoType::cancelled, Style::cancelled, "✗", "[-]"},
    StateSign{TodoType::scheduled, Style::scheduled, "→", "[>]"},
};

const StateSign& rowOf(TodoType type) {
    const auto row = std::find_if(stateSigns.begin(), stateSigns.end(),
                                  [type](const StateSign& sign) { return sign.type == type; });
    return row == stateSigns.end() ? stateSigns.front() : *row;
}

Style textStyle(TodoType type) {
    switch (type) {
        case TodoType::done: return Style::dim;
        case TodoType::cancelled: return Style::struck;
        default: return Style::plain;
    }
}

Style markStyle(grammar::MarkKind kind) {
    switch (kind) {
        case grammar::MarkKind::hashtag: return Style::hashtag;
        case grammar::MarkKind::mention: return Style::mention;
        case grammar::MarkKind::doneTag: return Style::dim;
        default: return Style::date;
    }
}

NotePlace placeOf(const store::NoteTask& task) {
    return {task.type, task.filename, task.noteDay, task.todo.lineIndex};
}

void printInTerminal(Context& context, const store::NoteTask& task) {
    Spans left{
        {Style::plain, std::string(2 + 2 * std::min<std::size_t>(task.todo.indents, 8), ' ')},
        signOf(task.todo.type, context.terminal),
        {Style::plain, " "}};
    for (Span& span : contentOf(task.todo)) {
        left.push_back(std::move(span));
    }
    const Spans right{{Style::dim, shortAddressOf(context, task)}};
    context.out.line(drawn(withRightPart(left, right, context.terminal), context.terminal));
}

void printPlain(Context& context, const store::NoteTask& task) {
    Spans line{{Style::dim, addressOf(task)},
               {Style::plain, "  "},
               {rowOf(task.todo.type).style, rowOf(task.todo.type).box},
               {Style::plain, " "}};
    for (Span& span : contentOf(task.todo)) {
        line.push_back(std::move(span));
    }
    context.out.line(drawn(line, context.terminal));
}

}  // namespace

std::string addressOf(const store::NoteTask& task) {
    return addressOf(placeOf(task));
}

std::string shortAddressOf(const Context& context, const store::NoteTask& task) {
    return shortAddressOf(context, placeOf(task));
}

Span signOf(grammar::TodoType type, const Terminal& terminal) {
    const StateSign& row = rowOf(type);
    return {row.style, terminal.isTerminal && terminal.isUtf8 ? row.sign : row.box};
}

Spans contentOf(const grammar::Todo& todo) {
    const std::string_view content = todo.content;
    const Style style = textStyle(todo.type);
    std::vector<grammar::Mark> marks;
    grammar::findMarks(content, marks);
    Spans spans;
    std::size_t shown = 0;
    const auto add = [&](Style as, std::size_t end) {
        if (end > shown) {
            spans.push_back({as, safeText(content.substr(shown, end - shown))});
            shown = end;
        }
    };
    for (const grammar::Mark& mark : marks) {
        if (mark.start >= shown && style == Style::plain) {
            add(style, mark.start);
            add(markStyle(mark.kind), mark.end);
        }
    }
    add(style, content.size());
    return spans;
}

void printTasks(Context& context, const std::vector<store::NoteTask>& tasks) {
    for (const store::NoteTask& task : tasks) {
        if (context.terminal.isTerminal) {
            printInTerminal(context, task);
        } else {
            printPlain(context, task);
        }
    }
}

void printTaskList(Context& context, const std::vector<store::NoteTask>& tasks) {
    if (!context.invocation.json) {
        printTasks(context, tasks);
        return;
    }
    for (const store::NoteTask& task : tasks) {
        context.out.line(recordOf(task, context.services.ports().clock).text());
    }
}

}  // namespace tessaly::cli
