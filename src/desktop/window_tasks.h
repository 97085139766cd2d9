// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "app/commands.h"
#include "app/services.h"
#include "app/task_gestures.h"

namespace tessaly::desktop {

/// What is done with tasks from any of the window's lists, or from the note: asks for the day where
/// one is needed, has the change made in the background and tells what it came to. Main thread.
class WindowTasks : public QObject {
    Q_OBJECT
public:
    using Tasks = std::vector<tasks::TaskReference>;

    /// `services` outlives it; questions lie over `window`.
    WindowTasks(app::Services& services, QWidget* window);

    /// Called before files are changed: saves what is open. False: it cannot be, and nothing is
    /// done.
    void setBeforeChange(std::function<bool()> beforeChange);

    /// Any command of the group of tasks but those that need a list; `anchor` is where the choice
    /// of a day belongs, in the screen's coordinates.
    void perform(app::CommandId command, const Tasks& tasks, const QRect& anchor);
    void tick(const tasks::TaskReference& task, app::TaskStep step);
    void schedule(const Tasks& tasks, base::Day day);
    void askDay(const Tasks& tasks, const QRect& anchor);
    /// Moves what is done in a note to its archive.
    void archive(const tasks::NoteName& note);
    void undoLast();

Q_SIGNALS:
    /// Something was done, or could not be. `undo` is empty where nothing can be taken back.
    void told(const QString& text, bool isFailure, const std::function<void()>& undo);
    /// Notes have other texts now.
    void changed(const std::vector<tasks::NoteName>& notes);

private:
    void change(app::TaskStep step, const Tasks& tasks);
    void shift(const Tasks& tasks, int days);
    bool isReady() const { return !_beforeChange || _beforeChange(); }
    app::TaskGestures::Told teller();

    app::Services& _services;
    QPointer<QWidget> _window;
    std::function<bool()> _beforeChange;
    app::TaskGestures _gestures;
};

}  // namespace tessaly::desktop
