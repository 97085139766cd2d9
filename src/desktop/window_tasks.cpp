// SPDX-License-Identifier: MIT
#include "desktop/window_tasks.h"

#include <map>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "desktop/qt_text.h"
#include "desktop/schedule_popover.h"
#include "search/task_day.h"
#include "store/note_names.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;

struct Shift {
    CommandId command;
    int days;
};
constexpr std::array<Shift, 4> shifts{{{CommandId::taskLater, 1},
                                       {CommandId::taskEarlier, -1},
                                       {CommandId::taskWeekLater, 7},
                                       {CommandId::taskWeekEarlier, -7}}};

struct Step {
    CommandId command;
    app::TaskStep step;
};
constexpr std::array<Step, 3> steps{{{CommandId::completeTask, app::TaskStep::complete},
                                     {CommandId::cancelTask, app::TaskStep::cancel},
                                     {CommandId::reopenTask, app::TaskStep::reopen}}};

/// The day that a task is planned for, as far as its text and its note tell.
std::optional<base::Day> plannedDay(const tasks::TaskReference& task) {
    const auto noteDay = task.note.type == base::NoteType::calendar
                             ? store::dayOfCalendarFilename(task.note.filename)
                             : std::nullopt;
    return search::dayOfTask(task.text.value_or(std::string()), noteDay);
}

QString scheduleTitle(std::size_t count) {
    return qt(fmt::format(
        fmt::runtime(base::trPlural("Schedule {} task", "Schedule {} tasks", count)), count));
}

}  // namespace

WindowTasks::WindowTasks(app::Services& services, QWidget* window)
    : QObject(window), _services(services), _window(window), _gestures(services) {}

void WindowTasks::setBeforeChange(std::function<bool()> beforeChange) {
    _beforeChange = std::move(beforeChange);
}

void WindowTasks::perform(app::CommandId command, const Tasks& tasks, const QRect& anchor) {
    if (command == CommandId::undoTask) {
        undoLast();
    } else if (command == CommandId::scheduleTask) {
        askDay(tasks, anchor);
    } else if (command == CommandId::scheduleToday) {
        schedule(tasks, _services.today());
    }
    for (const Step& row : steps) {
        if (row.command == command) {
            change(row.step, tasks);
        }
    }
    for (const Shift& row : shifts) {
        if (row.command == command) {
            shift(tasks, row.days);
        }
    }
}

void WindowTasks::tick(const tasks::TaskReference& task, app::TaskStep step) {
    change(step, {task});
}

void WindowTasks::schedule(const Tasks& tasks, base::Day day) {
    if (!tasks.empty() && isReady()) {
        _gestures.schedule(tasks, day, teller());
    }
}

void WindowTasks::askDay(const Tasks& tasks, const QRect& anchor) {
    if (tasks.empty() || _window == nullptr) {
        return;
    }
    const ScheduleContext context{_services.today(), _services.globals().firstDayOfWeek(),
                                  _services.dateStrings().formats(), plannedDay(tasks.front()),
                                  scheduleTitle(tasks.size())};
    SchedulePopover::popUp(_window, anchor, context,
                           [this, tasks](base::Day day) { schedule(tasks, day); });
}

void WindowTasks::undoLast() {
    if (isReady()) {
        _gestures.undoLast(teller());
    }
}

void WindowTasks::change(app::TaskStep step, const Tasks& tasks) {
    if (!tasks.empty() && isReady()) {
        _gestures.change(step, tasks, teller());
    }
}

/// Each task from the day that it is planned for; one without a day from today. One operation.
void WindowTasks::shift(const Tasks& tasks, int days) {
    if (tasks.empty() || !isReady()) {
        return;
    }
    std::map<base::Day, Tasks> byDay;
    for (const tasks::TaskReference& task : tasks) {
        byDay[base::addDays(plannedDay(task).value_or(_services.today()), days)].push_back(task);
    }
    std::vector<tasks::TaskOperations::DayOfTasks> moves;
    for (const auto& [day, moved] : byDay) {
        moves.push_back({day, moved});
    }
    _gestures.schedule(std::move(moves), teller());
}

void WindowTasks::archive(const tasks::NoteName& note) {
    if (isReady()) {
        _gestures.archive(note, teller());
    }
}

app::TaskGestures::Told WindowTasks::teller() {
    return [this](const app::GestureNotice& notice) {
        std::function<void()> undo;
        if (notice.operation) {
            undo = [this, operation = *notice.operation] {
                if (isReady()) {
                    _gestures.undo(operation, teller());
                }
            };
        }
        Q_EMIT changed(notice.notes);
        Q_EMIT told(qt(notice.text), notice.isFailure, undo);
    };
}

}  // namespace tessaly::desktop
