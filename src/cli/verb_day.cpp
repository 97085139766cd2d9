// SPDX-License-Identifier: MIT
#include <string>

#include <fmt/format.h>

#include "app/day_view.h"
#include "app/note_address.h"
#include "base/localisation.h"
#include "cli/context.h"
#include "cli/json_records.h"
#include "cli/safe_text.h"
#include "cli/task_lines.h"
#include "cli/verb_functions.h"

namespace tessaly::cli {

namespace {

using base::tr;
using Tasks = std::vector<store::NoteTask>;

constexpr std::size_t mostOverdue = 10;  // in a day; `overdue` prints them all

void printStyled(Context& context, const Spans& spans) {
    context.out.line(drawn(spans, context.terminal));
}

std::string countText(const Context& context, std::size_t count) {
    return context.services.dateStrings().formats().number(static_cast<long long>(count));
}

void printSection(Context& context, const std::string& name, Style style, const Tasks& tasks,
                  std::size_t total) {
    if (total == 0) {
        return;
    }
    context.out.line("");
    printStyled(context, {{style, name}, {Style::dim, "  " + countText(context, total)}});
    printTasks(context, tasks);
}

void printOverdue(Context& context, const store::OverdueTasks& overdue) {
    printSection(context, tr("Overdue"), Style::late, overdue.tasks, overdue.total);
    const std::size_t left = overdue.total - overdue.tasks.size();
    if (left > 0) {
        const std::string text = base::trPlural("… and {} more (tessaly overdue)",
                                                "… and {} more (tessaly overdue)", left);
        printStyled(context, {{Style::dim,
                               "  " + fmt::format(fmt::runtime(text), countText(context, left))}});
    }
}

void printSections(Context& context, const app::DayView& view) {
    printSection(context, tr("Tasks"), Style::section, view.tasks, view.tasks.size());
    printSection(context, tr("Scheduled here"), Style::section, view.scheduled,
                 view.scheduled.size());
    printOverdue(context, view.overdue);
}

bool isEmpty(const app::DayView& view) {
    return view.tasks.empty() && view.scheduled.empty() && view.overdue.total == 0;
}

/// In a terminal, a day beside today is also called by its name.
Span shownName(Context& context, const app::DayView& view) {
    const int distance = base::daysBetween(context.services.today(), view.day);
    const bool isNear = distance >= -1 && distance <= 1;
    return {Style::dim, context.terminal.isTerminal && isNear ? "  " + view.name : ""};
}

void printDay(Context& context, const app::DayView& view) {
    printStyled(context, {{Style::heading, view.heading}, shownName(context, view)});
    printSections(context, view);
    if (isEmpty(view)) {
        printStyled(context, {{Style::dim, "  " + tr("No tasks.")}});
    }
}

Exit printDays(Context& context, const app::DayViews& views) {
    if (!isComplete(context, views.report)) {
        return Exit::couldNot;
    }
    bool isFirst = true;
    for (const app::DayView& view : views.days) {
        if (context.invocation.json) {
            context.out.line(recordOf(view, context.services.ports().clock).text());
            continue;
        }
        if (!isFirst) {
            context.out.line("");
        }
        isFirst = false;
        printDay(context, view);
    }
    return Exit::done;
}

/// A program gets them all.
std::size_t overdueToTell(const Context& context) {
    return context.invocation.json ? store::everyTask : mostOverdue;
}

/// The day that the verb's argument names; today without one.
std::optional<base::Day> wantedDay(Context& context) {
    const base::Day today = context.services.today();
    if (context.invocation.arguments.empty()) {
        return today;
    }
    const std::string& text = context.invocation.arguments.front();
    const auto day = app::parseDay(text, today, context.services.dateStrings().formats());
    if (!day) {
        complain(fmt::format(fmt::runtime(tr("“{}” is no day")), safeText(text)));
    }
    return day;
}

}  // namespace

Exit runToday(Context& context) {
    return printDays(context, app::dayViews(context.services, context.services.today(), 1,
                                            context.readOptions(), overdueToTell(context)));
}

Exit runDay(Context& context) {
    const auto day = wantedDay(context);
    if (!day) {
        return Exit::misuse;
    }
    return printDays(context, app::dayViews(context.services, *day, 1, context.readOptions(),
                                            overdueToTell(context)));
}

Exit runWeek(Context& context) {
    const auto day = wantedDay(context);
    if (!day) {
        return Exit::misuse;
    }
    return printDays(context, app::weekView(context.services, *day, context.readOptions(),
                                            overdueToTell(context)));
}

Exit runOverdue(Context& context) {
    const app::OverdueView view = app::overdueView(context.services, context.readOptions());
    if (!isComplete(context, view.report)) {
        return Exit::couldNot;
    }
    printTaskList(context, view.tasks);
    return Exit::done;
}

}  // namespace tessaly::cli
