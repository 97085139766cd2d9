// SPDX-License-Identifier: MIT
#include "desktop/caret_tasks.h"

#include <QRect>
#include <algorithm>
#include <utility>

#include "app/shown_text.h"
#include "base/localisation.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"
#include "grammar/line_scanner.h"
#include "tasks/task_rewrites.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;
using grammar::TodoType;

struct LineStep {
    CommandId command;
    TodoType alreadyThere;
    const char* already;
};
constexpr LineStep lineSteps[] = {
    {CommandId::completeTask, TodoType::done, base::N_("This is done already.")},
    {CommandId::cancelTask, TodoType::cancelled, base::N_("This is cancelled already.")},
    {CommandId::reopenTask, TodoType::open, base::N_("This is open already.")},
};

const LineStep* lineStepOf(CommandId command) {
    const auto found = std::find_if(std::begin(lineSteps), std::end(lineSteps),
                                    [&](const LineStep& step) { return step.command == command; });
    return found == std::end(lineSteps) ? nullptr : found;
}

std::string steppedLine(CommandId command, const std::string& line, const base::LocalTime& now,
                        const tasks::RewriteSettings& settings) {
    switch (command) {
        case CommandId::completeTask: {
            const std::string done = tasks::completed(line, now, settings);
            return tasks::withFinalRepeat(done, settings.markers).value_or(done);
        }
        case CommandId::cancelTask: return tasks::cancelled(line);
        default: return tasks::reopened(line, settings.markers);
    }
}

}  // namespace

CaretTasks::CaretTasks(app::Services& services, NoteEditor& editor, Note note, QObject* parent)
    : QObject(parent), _services(services), _editor(editor), _note(std::move(note)) {}

bool CaretTasks::perform(CommandId command) {
    switch (command) {
        case CommandId::completeTask:
        case CommandId::cancelTask:
        case CommandId::reopenTask: change(command); return true;
        case CommandId::scheduleTask:
        case CommandId::scheduleToday:
        case CommandId::taskLater:
        case CommandId::taskEarlier:
        case CommandId::taskWeekLater:
        case CommandId::taskWeekEarlier: askWindow(command); return true;
        default: return false;
    }
}

void CaretTasks::toggle(int line) {
    const tasks::RewriteSettings settings = _services.rewriteSettings();
    const base::LocalTime now = _services.ports().clock.local(_services.ports().clock.now());
    _editor.rewriteLines({line, line}, [&](const std::string& before) {
        const TodoType type = grammar::classifyLine(before, settings.markers).type;
        const bool isOver = type == TodoType::done || type == TodoType::cancelled;
        return !tasks::isActionable(before) ? before
               : isOver ? steppedLine(CommandId::reopenTask, before, now, settings)
                        : steppedLine(CommandId::completeTask, before, now, settings);
    });
}

void CaretTasks::change(CommandId command) {
    const tasks::RewriteSettings settings = _services.rewriteSettings();
    const base::LocalTime now = _services.ports().clock.local(_services.ports().clock.now());
    const LineStep& step = *lineStepOf(command);
    const auto found = selected();
    const auto typeOf = [&](const std::string& line) {
        return grammar::classifyLine(line, settings.markers).type;
    };
    // What was scheduled has a copy in another note.
    if (command == CommandId::reopenTask &&
        std::any_of(found.begin(), found.end(),
                    [&](const auto& task) { return typeOf(*task.text) == TodoType::scheduled; })) {
        askWindow(command);
        return;
    }
    const int changed = _editor.rewriteLines([&](const std::string& line) {
        const bool isDue = tasks::isActionable(line) && typeOf(line) != step.alreadyThere;
        return isDue ? steppedLine(command, line, now, settings) : line;
    });
    if (changed == 0) {
        Q_EMIT notice(found.empty() ? trText("There is no task in this line.")
                                    : trText(step.already));
    }
}

std::vector<tasks::TaskReference> CaretTasks::selected() const {
    std::vector<tasks::TaskReference> found;
    const std::string text = _note.text();
    const app::NoteAddress address = _note.address();
    const auto [first, last] = _editor.selectedLines();
    for (int line = first; line <= last; ++line) {
        std::string content = _editor.lineText(line);
        if (tasks::isActionable(content)) {
            found.push_back({{address.type, address.filename},
                             app::noteLineOf(text, static_cast<std::size_t>(line)),
                             std::move(content)});
        }
    }
    return found;
}

void CaretTasks::askWindow(CommandId command) {
    const auto found = selected();
    if (found.empty()) {
        Q_EMIT notice(trText("There is no task in this line."));
        return;
    }
    if (!_note.save()) {
        return;  // the save state tells
    }
    if (command == CommandId::scheduleTask) {
        Q_EMIT scheduleAsked(found, _editor.caretPlace());
    } else {
        Q_EMIT taskGesture(command, found);
    }
}

}  // namespace tessaly::desktop
