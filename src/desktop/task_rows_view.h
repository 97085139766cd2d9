// SPDX-License-Identifier: MIT
#pragma once

#include <QListView>
#include <functional>
#include <vector>

#include "app/commands.h"
#include "app/place.h"
#include "app/task_changes.h"
#include "base/day.h"
#include "desktop/key_count.h"
#include "desktop/task_row_delegate.h"
#include "desktop/task_rows.h"

namespace tessaly::desktop {

/// A list of days' tasks with all that can be done to them in place, by pointer, key and menu. It
/// changes nothing itself. Main thread.
class TaskRowsView : public QListView {
    Q_OBJECT
public:
    explicit TaskRowsView(QWidget* parent);

    /// Shows other rows; where the current row is among them it stays current, else the one that
    /// stands in its place, and what was scrolled to stays in sight. `make` is asked again when the
    /// user folds the overdue tasks away.
    void show(std::function<std::vector<TaskRow>(OverdueFold fold)> make, base::Day today);
    using QListView::show;

    /// Rows are laid out in a column of at most `width` in the middle, with at least `margin`
    /// beside it. Before: as wide as the view.
    void setColumn(int width, int margin);
    TaskRowDelegate& delegate() { return *_delegate; }

    /// Does what a command says to the current task. False: there is none, or the command is not
    /// for tasks.
    bool perform(app::CommandId command);

Q_SIGNALS:
    void ticked(tessaly::tasks::TaskReference task, tessaly::app::TaskStep step);
    /// The user wants to choose a day. `anchor`, in the screen's coordinates, is what the choice
    /// belongs to.
    void scheduleAsked(std::vector<tessaly::tasks::TaskReference> tasks, QRect anchor);
    /// The user has named the day.
    void scheduled(std::vector<tessaly::tasks::TaskReference> tasks, tessaly::base::Day day);
    void jumped(tessaly::app::Place place, std::size_t line);
    void dayChosen(tessaly::base::Day day);
    void undoAsked();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Hit {
        QModelIndex index;
        TaskRowPart part = TaskRowPart::none;
    };
    Hit hitAt(const QPoint& point) const;
    const TaskRow* currentRow() const;
    const TaskRow* currentTask() const;
    void refill();
    void keepCurrent(const TaskRow& was, int row);
    void activateRow(const QModelIndex& index);
    void act(const Hit& hit);
    void tick(const TaskRow& row);
    void askSchedule(const QModelIndex& index);
    void scheduleBy(const TaskRow& row, int days);
    void toggleOverdue();
    QString toolTipOf(const Hit& hit) const;

    TaskRowsModel* const _model;
    TaskRowDelegate* const _delegate;
    std::function<std::vector<TaskRow>(OverdueFold)> _make;
    base::Day _today{};
    OverdueFold _fold = OverdueFold::folded;
    int _columnWidth = QWIDGETSIZE_MAX;
    int _columnMargin = 0;
    KeyCount _count;
    Hit _pressed;
};

}  // namespace tessaly::desktop
