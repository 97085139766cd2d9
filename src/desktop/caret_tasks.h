// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/note_address.h"
#include "app/services.h"
#include "tasks/task_outcome.h"

class QRect;

namespace tessaly::desktop {

class NoteEditor;

/// What commands do to the tasks in the lines that the selection of an editor touches. What changes
/// the lines alone is an edit of the text; what touches other notes the window is asked for.
class CaretTasks : public QObject {
    Q_OBJECT
public:
    /// The note that the editor shows.
    struct Note {
        std::function<app::NoteAddress()> address;
        std::function<std::string()> text;
        std::function<bool()> save;  ///< false: it cannot be saved, and the window is not asked
    };
    /// `services` and `editor` outlive it.
    CaretTasks(app::Services& services, NoteEditor& editor, Note note, QObject* parent);

    /// False: the command is not for tasks.
    bool perform(app::CommandId command);
    /// The box of the task in a line was clicked: done and cancelled become open, all else done.
    void toggle(int line);

Q_SIGNALS:
    void taskGesture(app::CommandId command, const std::vector<tasks::TaskReference>& tasks);
    /// `anchor` in global coordinates.
    void scheduleAsked(const std::vector<tasks::TaskReference>& tasks, const QRect& anchor);
    void notice(const QString& text);

private:
    void change(app::CommandId command);
    void askWindow(app::CommandId command);
    std::vector<tasks::TaskReference> selected() const;

    app::Services& _services;
    NoteEditor& _editor;
    const Note _note;
};

}  // namespace tessaly::desktop
