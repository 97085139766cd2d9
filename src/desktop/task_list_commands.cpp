// SPDX-License-Identifier: MIT
#include "desktop/task_list_commands.h"

#include <QStringList>
#include <algorithm>
#include <iterator>

#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;

struct StepOfCommand {
    CommandId command;
    app::TaskStep step;
};
constexpr StepOfCommand taskSteps[] = {{CommandId::completeTask, app::TaskStep::complete},
                                       {CommandId::cancelTask, app::TaskStep::cancel},
                                       {CommandId::reopenTask, app::TaskStep::reopen}};

struct DaysOfCommand {
    CommandId command;
    int days;
};
constexpr DaysOfCommand taskMoves[] = {{CommandId::taskLater, 1},
                                       {CommandId::taskEarlier, -1},
                                       {CommandId::taskWeekLater, 7},
                                       {CommandId::taskWeekEarlier, -7}};

template <class Table>
auto rowOfCommand(const Table& table, CommandId command) {
    return std::find_if(std::begin(table), std::end(table),
                        [&](const auto& row) { return row.command == command; });
}

QStringList listKeysOf(const app::CommandRow& row) {
    return QString::fromLatin1(row.listKeys).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

}  // namespace

std::optional<app::TaskStep> taskStepOf(CommandId command) {
    const auto* const row = rowOfCommand(taskSteps, command);
    return row == std::end(taskSteps) ? std::nullopt : std::optional(row->step);
}

std::optional<int> taskMoveOf(CommandId command) {
    const auto* const row = rowOfCommand(taskMoves, command);
    return row == std::end(taskMoves) ? std::nullopt : std::optional(row->days);
}

std::optional<CommandId> taskCommandOfTyped(const QString& typed) {
    if (typed.isEmpty()) {
        return std::nullopt;
    }
    for (const app::CommandRow& row : app::commandRows()) {
        if (row.group == app::CommandGroup::task && listKeysOf(row).contains(typed)) {
            return row.id;
        }
    }
    return std::nullopt;
}

QString withListKey(CommandId id, const char* format, const QString& other) {
    const app::CommandRow& row = app::commandRow(id);
    const QString text = trText(row.text);
    const QString key = other.isEmpty() ? listKeysOf(row).value(0) : other;
    return key.isEmpty() ? text : QString::fromLatin1(format).arg(text, key);
}

}  // namespace tessaly::desktop
