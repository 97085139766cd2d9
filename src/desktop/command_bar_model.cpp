// SPDX-License-Identifier: MIT
#include "desktop/command_bar_model.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include "app/fuzzy_match.h"
#include "desktop/command_actions.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using app::CommandGroup;
using app::CommandId;
using app::Place;

/// What finds the group finds its commands, behind those that are meant themselves.
constexpr int groupPenalty = 40;
constexpr int recentBonus = 6;

struct CommandIcon {
    CommandId id;
    IconName icon;
};

constexpr std::array commandIcons{
    CommandIcon{CommandId::goToday, IconName::calendar},
    CommandIcon{CommandId::goWeek, IconName::week},
    CommandIcon{CommandId::goToDate, IconName::calendar},
    CommandIcon{CommandId::goBack, IconName::back},
    CommandIcon{CommandId::goPreviousDay, IconName::back},
    CommandIcon{CommandId::search, IconName::search},
    CommandIcon{CommandId::showInbox, IconName::inbox},
    CommandIcon{CommandId::showRecent, IconName::recent},
    CommandIcon{CommandId::newNote, IconName::plus},
    CommandIcon{CommandId::newFolder, IconName::folder},
    CommandIcon{CommandId::moveNote, IconName::folder},
    CommandIcon{CommandId::openFolder, IconName::folderOpen},
    CommandIcon{CommandId::trashNote, IconName::trash},
    CommandIcon{CommandId::archiveDone, IconName::archive},
    CommandIcon{CommandId::completeTask, IconName::taskDone},
    CommandIcon{CommandId::cancelTask, IconName::taskCancelled},
    CommandIcon{CommandId::reopenTask, IconName::task},
    CommandIcon{CommandId::scheduleTask, IconName::schedule},
    CommandIcon{CommandId::scheduleToday, IconName::schedule},
    CommandIcon{CommandId::jumpToSource, IconName::jump},
    CommandIcon{CommandId::undoTask, IconName::undo},
    CommandIcon{CommandId::undo, IconName::undo},
    CommandIcon{CommandId::find, IconName::search},
    CommandIcon{CommandId::markTodo, IconName::task},
    CommandIcon{CommandId::markDone, IconName::taskDone},
    CommandIcon{CommandId::markScheduled, IconName::taskScheduled},
    CommandIcon{CommandId::markCanceled, IconName::taskCancelled},
    CommandIcon{CommandId::toggleSideBar, IconName::sideBar},
    CommandIcon{CommandId::toggleList, IconName::list},
    CommandIcon{CommandId::toggleRightPane, IconName::rightPane},
    CommandIcon{CommandId::saveView, IconName::filter},
    CommandIcon{CommandId::showShortcuts, IconName::help},
    CommandIcon{CommandId::closeWindow, IconName::close},
};

IconName barIconOf(CommandId id) {
    const auto found = std::ranges::find(commandIcons, id, &CommandIcon::id);
    return found == commandIcons.end() ? IconName::chevronRight : found->icon;
}

IconName barIconOf(const Place& place) {
    return place.kind == Place::Kind::note ? IconName::note : IconName::calendar;
}

struct RankedRow {
    int score;
    CommandBarRow row;
};

/// Those of late are numbered from the newest; the others come behind them.
std::size_t rankOfLate(const CommandActions& actions, CommandId id) {
    const auto recent = actions.recent();
    return static_cast<std::size_t>(std::ranges::find(recent, id) - recent.begin());
}

std::optional<RankedRow> rankedRow(const CommandActions& actions, const app::CommandRow& command,
                                   std::string_view typed) {
    const std::string title = base::tr(command.text);
    const std::string group = base::tr(app::groupText(command.group));
    auto match = app::fuzzyMatch(typed, title);
    if (!match) {
        match = app::fuzzyMatch(typed, group + " " + title);
        if (!match) {
            return std::nullopt;
        }
        match->score -= groupPenalty;
        match->ranges.clear();
    }
    const bool isOfLate = rankOfLate(actions, command.id) < actions.recent().size();
    return RankedRow{match->score + (isOfLate ? recentBonus : 0),
                     {command.id, barIconOf(command.id), qt(title), qt(group),
                      actions.keyText(command.id), std::move(match->ranges)}};
}

}  // namespace

std::vector<CommandBarRow> commandBarRows(const CommandActions& actions, std::string_view typed) {
    const bool isNothingTyped = app::FuzzyPattern(typed).isEmpty();
    std::vector<RankedRow> ranked;
    for (const app::CommandRow& command : app::commandRows()) {
        if (command.id == CommandId::palette || !actions.canRun(command.id)) {
            continue;
        }
        if (auto row = rankedRow(actions, command, typed)) {
            if (isNothingTyped) {
                row->score = -static_cast<int>(rankOfLate(actions, command.id));
            }
            ranked.push_back(std::move(*row));
        }
    }
    std::ranges::stable_sort(ranked, std::ranges::greater(), &RankedRow::score);
    std::vector<CommandBarRow> rows;
    for (RankedRow& row : ranked) {
        rows.push_back(std::move(row.row));
    }
    return rows;
}

std::vector<CommandBarRow> commandBarRows(app::QuickOpen& quickOpen, const QString& typed) {
    std::vector<CommandBarRow> rows;
    for (app::QuickOpenRow& found : quickOpen.rows(utf8(typed))) {
        rows.push_back({found.place,
                        barIconOf(found.place),
                        qt(found.title),
                        qt(found.detail),
                        {},
                        std::move(found.ranges)});
    }
    const QString title = typed.simplified();
    if (!title.isEmpty()) {
        const QKeySequence key(Qt::SHIFT | Qt::Key_Enter);
        rows.push_back({NewNote{title},
                        IconName::plus,
                        trText("New note “%1”").arg(title),
                        {},
                        key.toString(QKeySequence::NativeText),
                        {}});
    }
    return rows;
}

void CommandBarModel::setRows(std::vector<CommandBarRow> rows) {
    beginResetModel();
    _rows = std::move(rows);
    endResetModel();
}

int CommandBarModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(_rows.size());
}

QVariant CommandBarModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)) {
        return {};
    }
    const CommandBarRow& shown = row(index.row());
    if (role == Qt::DisplayRole) {
        return shown.title;
    }
    QStringList parts{shown.title};
    for (const QString& part : {shown.detail, shown.key}) {
        if (!part.isEmpty()) {
            parts.append(part);
        }
    }
    return parts.join(QStringLiteral(", "));
}

}  // namespace tessaly::desktop
