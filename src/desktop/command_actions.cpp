// SPDX-License-Identifier: MIT
#include "desktop/command_actions.h"

#include <QAction>
#include <QMenu>
#include <QWidget>
#include <algorithm>
#include <array>

#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using app::CommandId;

constexpr std::size_t mostRecentCommands = 8;

/// Those that menus draw a line above.
constexpr std::array sectionStarts{
    CommandId::goBack,         CommandId::quickOpen,    CommandId::showInbox,
    CommandId::renameNote,     CommandId::openFolder,   CommandId::archiveDone,
    CommandId::scheduleTask,   CommandId::jumpToSource, CommandId::find,
    CommandId::markHeading1,   CommandId::markTodo,     CommandId::markDone,
    CommandId::markShiftRight, CommandId::nextPane,     CommandId::largerText,
    CommandId::toggleSpelling, CommandId::saveView,     CommandId::closeWindow};

/// These lead to other commands: who chose one does not want it offered again.
constexpr std::array waysToCommands{CommandId::palette, CommandId::quickOpen};

std::size_t placeOf(CommandId id) {
    return static_cast<std::size_t>(id);
}

QString actionTip(const app::CommandRow& row, const QString& key) {
    const bool hasHelp = *row.help != '\0';
    QString tip = trText(hasHelp ? row.help : row.text);
    if (tip.endsWith(QChar(0x2026))) {
        tip.chop(1);
    }
    return key.isEmpty() ? tip : QStringLiteral("%1 (%2)").arg(tip, key);
}

}  // namespace

QList<QKeySequence> keysOf(const app::CommandRow& row) {
    QList<QKeySequence> keys;
    for (const QString& key : qt(row.keys).split(u' ', Qt::SkipEmptyParts)) {
        keys.append(QKeySequence(key, QKeySequence::PortableText));
    }
    return keys;
}

CommandActions::CommandActions(QWidget* window) : QObject(window) {
    const auto rows = app::commandRows();
    _bound.resize(rows.size());
    for (const app::CommandRow& row : rows) {
        makeAction(window, row);
        update(row.id);
    }
}

void CommandActions::makeAction(QWidget* window, const app::CommandRow& row) {
    auto* action = new QAction(trText(row.text), this);
    action->setObjectName(qt(row.name));
    action->setShortcuts(keysOf(row));
    action->setMenuRole(QAction::NoRole);
    window->addAction(action);
    _actions.push_back(action);
    action->setToolTip(actionTip(row, keyText(row.id)));
    connect(action, &QAction::triggered, this, [this, id = row.id] { perform(id); });
}

QAction* CommandActions::action(CommandId id) const {
    return _actions[placeOf(id)];
}

void CommandActions::bind(CommandId id, std::function<void()> run) {
    _bound[placeOf(id)] = std::move(run);
    update(id);
}

void CommandActions::bind(std::initializer_list<CommandId> ids,
                          const std::function<void(CommandId)>& run) {
    for (const CommandId id : ids) {
        bind(id, [run, id] { run(id); });
    }
}

void CommandActions::bind(app::CommandGroup group, const std::function<void(CommandId)>& run) {
    for (const app::CommandRow& row : app::commandRows()) {
        if (row.group == group) {
            bind(row.id, [run, id = row.id] { run(id); });
        }
    }
}

void CommandActions::setState(const app::CommandState& state) {
    if (state == _state) {
        return;
    }
    _state = state;
    for (const app::CommandRow& row : app::commandRows()) {
        update(row.id);
    }
}

void CommandActions::update(CommandId id) {
    QAction* const changed = action(id);
    changed->setVisible(_bound[placeOf(id)] != nullptr);
    changed->setEnabled(canRun(id));
}

bool CommandActions::canRun(CommandId id) const {
    return _bound[placeOf(id)] != nullptr && app::isMet(app::commandRow(id).need, _state);
}

void CommandActions::run(CommandId id) {
    action(id)->trigger();
}

void CommandActions::perform(CommandId id) {
    if (std::ranges::find(waysToCommands, id) == waysToCommands.end()) {
        std::erase(_recent, id);
        _recent.insert(_recent.begin(), id);
        _recent.resize(std::min(_recent.size(), mostRecentCommands));
    }
    // The command may bind anew what it is itself.
    const auto run = _bound[placeOf(id)];
    run();
}

void CommandActions::fillMenu(QMenu* menu, app::CommandGroup group) const {
    for (const app::CommandRow& row : app::commandRows()) {
        if (row.group != group) {
            continue;
        }
        if (std::ranges::find(sectionStarts, row.id) != sectionStarts.end()) {
            menu->addSeparator();
        }
        menu->addAction(action(row.id));
    }
}

QString CommandActions::keyText(CommandId id) const {
    return action(id)->shortcut().toString(QKeySequence::NativeText);
}

}  // namespace tessaly::desktop
