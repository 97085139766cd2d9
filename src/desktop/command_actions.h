// SPDX-License-Identifier: MIT
#pragma once

#include <QKeySequence>
#include <QObject>
#include <QString>
#include <functional>
#include <initializer_list>
#include <span>
#include <vector>

#include "app/commands.h"

class QAction;
class QMenu;
class QWidget;

namespace tessaly::desktop {

/// The commands as actions of a window: each with its text, keys, tooltip ("Go to Today (Ctrl+T)"),
/// and its command's stable name as object name. A command that nothing is bound to is not seen and
/// its key does nothing; one whose need is not met is greyed. Main thread.
class CommandActions : public QObject {
    Q_OBJECT
public:
    /// The keys work wherever in `window` the focus is; widgets that want one of them for
    /// themselves accept its ShortcutOverride.
    explicit CommandActions(QWidget* window);

    QAction* action(app::CommandId id) const;
    /// What a command does; a later one takes the place of an earlier.
    void bind(app::CommandId id, std::function<void()> run);
    /// One answer for several commands.
    void bind(std::initializer_list<app::CommandId> ids,
              const std::function<void(app::CommandId)>& run);
    void bind(app::CommandGroup group, const std::function<void(app::CommandId)>& run);

    void setState(const app::CommandState& state);
    /// Bound, and its need is met.
    bool canRun(app::CommandId id) const;
    /// Does nothing where it cannot run.
    void run(app::CommandId id);
    /// Those that have been chosen from the palette or a menu, or by key: newest first.
    std::span<const app::CommandId> recent() const { return _recent; }

    /// The group's commands, parted into sections.
    void fillMenu(QMenu* menu, app::CommandGroup group) const;
    /// The first key in the user's words, "Ctrl+Umschalt+P"; empty: none.
    QString keyText(app::CommandId id) const;

private:
    void makeAction(QWidget* window, const app::CommandRow& row);
    void perform(app::CommandId id);
    void update(app::CommandId id);

    std::vector<QAction*> _actions;  // by id, as are those below
    std::vector<std::function<void()>> _bound;
    app::CommandState _state;
    std::vector<app::CommandId> _recent;
};

/// A command's keys, in the toolkit's form.
QList<QKeySequence> keysOf(const app::CommandRow& row);

}  // namespace tessaly::desktop
