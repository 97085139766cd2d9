// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

#include "app/place.h"
#include "app/quick_open.h"

class QKeyEvent;
class QLabel;
class QLineEdit;
class QListView;

namespace tessaly::desktop {

class CommandActions;
class CommandBarModel;

/// The field over a window in which a command, or a note or day, is chosen by some letters of its
/// name. Enter takes the marked row, Shift+Enter makes a note with the typed title, Escape or a
/// click elsewhere closes; the focus goes back to where it was. Main thread.
class CommandBar : public QWidget {
    Q_OBJECT
public:
    /// All outlive it; `window` owns it.
    CommandBar(QWidget* window, CommandActions& actions, app::QuickOpen& quickOpen);

    /// The commands that can run, those of late first.
    void showCommands();
    /// Notes and days, those last changed first.
    void showNotes();

Q_SIGNALS:
    void opened(const tessaly::app::Place& place);
    void newNoteAsked(const QString& title);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class Mode { commands, notes };

    void makePanel();
    void dress();
    void popUp(Mode mode);
    void close();
    void place();
    void refresh();
    void setHint();
    void setCurrent(int row);
    void step(int rows);
    void choose(int row);
    void makeNote();
    bool handleKey(const QKeyEvent& event);
    void claim(QKeyEvent& event) const;

    QWidget* const _window;
    CommandActions& _actions;
    app::QuickOpen& _quickOpen;
    QWidget*
        _panel;  ///< what is seen; the bar itself covers the window, and takes clicks beside it
    QLineEdit* _field;
    QListView* _list;
    QLabel* _hint;
    CommandBarModel* _model;
    QPointer<QWidget> _focusBefore;
    Mode _mode = Mode::commands;
};

}  // namespace tessaly::desktop
