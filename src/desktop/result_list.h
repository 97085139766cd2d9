// SPDX-License-Identifier: MIT
#pragma once

#include <QListView>
#include <optional>
#include <vector>

#include "app/commands.h"
#include "app/list_feed.h"
#include "app/place.h"
#include "base/day.h"
#include "desktop/key_count.h"
#include "desktop/result_model.h"
#include "tasks/task_outcome.h"

namespace tessaly::desktop {

/// Whether the keyboard goes along with a note that is opened out of a list.
enum class OpenFocus { stays, follows };

/// The list itself: rows, the keys that work on them, and the boxes that can be clicked.
class ResultList : public QListView {
    Q_OBJECT
public:
    explicit ResultList(QWidget* parent = nullptr);

    /// Shows a list; of the same list again, selection and place stay with their rows, and where
    /// the current row has gone, the next one becomes it.
    void setView(const app::ListView& view);

    /// The selected tasks in their order; none selected: the current one.
    std::vector<tasks::TaskReference> selectedTasks() const;
    /// Where something about the selection is to appear, in global coordinates.
    QRect selectionAnchor() const;
    /// Does what a command of tasks means for the selection; false: it is none of the list's, or
    /// there is no task.
    bool perform(app::CommandId command);
    /// Makes a row the current one when none is.
    void enter();
    /// The day that `t` schedules to.
    void setToday(base::Day today) { _today = today; }

Q_SIGNALS:
    void opened(const app::Place& place, std::optional<std::size_t> line, OpenFocus focus);
    void gesture(app::CommandId command, const std::vector<tasks::TaskReference>& tasks);
    /// To that day; tasks that go to different days are told day by day.
    void scheduled(const std::vector<tasks::TaskReference>& tasks, base::Day day);
    void scheduleAsked(const std::vector<tasks::TaskReference>& tasks, const QRect& anchor);
    void searchAsked();
    void left();  ///< Escape
    void moreWanted();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void restoreCurrent(int oldCurrent, const std::vector<int>& newRows);
    int taskBoxAt(const QPoint& place) const;
    bool open(int row, OpenFocus focus);
    void moveBy(int rows);
    void mark();
    void unmark();
    bool shift(int days);
    void scheduleToday();
    void escape();
    void showMenu(const QPoint& place);
    bool performLetter(const QString& letter);
    std::vector<int> selectedRows() const;
    std::vector<int> selectedTaskRows() const;
    void askForMore();

    ResultModel* _model;
    base::Day _today{};
    KeyCount _count;
    bool _isMarking = false;  ///< rows are selected one by one, and moving keeps them
    bool _isTicking = false;  ///< the mouse went down on a box
};

}  // namespace tessaly::desktop
