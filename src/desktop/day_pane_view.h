// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <vector>

#include "app/day_pane.h"
#include "app/place.h"
#include "app/task_changes.h"
#include "base/day.h"
#include "desktop/task_rows_view.h"
#include "grammar/date_string_helper.h"

class QLabel;
class QToolButton;

namespace tessaly::desktop {

class ElidedLabel;

/// The day beside the note: its heading with a way to the days around it, what is overdue, and its
/// tasks. Signals are those of `TaskRowsView`. Main thread.
class DayPaneView : public QWidget {
    Q_OBJECT
public:
    explicit DayPaneView(grammar::DateStringHelper days, QWidget* parent = nullptr);

    void show(const app::DayPane& pane, base::Day today);
    using QWidget::show;

    /// As `TaskRowsView::perform`.
    bool perform(app::CommandId command) { return _rows->perform(command); }
    /// Has the keys when the pane is gone to.
    QWidget* focusTarget() const { return _rows; }

Q_SIGNALS:
    void ticked(tessaly::tasks::TaskReference task, tessaly::app::TaskStep step);
    void scheduleAsked(std::vector<tessaly::tasks::TaskReference> tasks, QRect anchor);
    void scheduled(std::vector<tessaly::tasks::TaskReference> tasks, tessaly::base::Day day);
    void jumped(tessaly::app::Place place, std::size_t line);
    void dayChosen(tessaly::base::Day day);
    void undoAsked();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const grammar::DateStringHelper _days;
    QToolButton* dayButton(int days);
    void takeLook();

    base::Day _day{};
    ElidedLabel* const _heading;
    QLabel* const _relative;
    QToolButton* const _previous;
    QToolButton* const _next;
    TaskRowsView* const _rows;
};

}  // namespace tessaly::desktop
