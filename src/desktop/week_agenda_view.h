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

namespace tessaly::desktop {

/// The seven days of a week in one column, in the middle of the window. Signals are those of
/// `TaskRowsView`. Main thread.
class WeekAgendaView : public QWidget {
    Q_OBJECT
public:
    explicit WeekAgendaView(grammar::DateStringHelper days, QWidget* parent = nullptr);

    void show(const app::WeekAgenda& agenda, base::Day today);
    using QWidget::show;

    /// As `TaskRowsView::perform`.
    bool perform(app::CommandId command) { return _rows->perform(command); }
    /// Has the keys when the agenda is gone to.
    QWidget* focusTarget() const { return _rows; }

Q_SIGNALS:
    void ticked(tessaly::tasks::TaskReference task, tessaly::app::TaskStep step);
    void scheduleAsked(std::vector<tessaly::tasks::TaskReference> tasks, QRect anchor);
    void scheduled(std::vector<tessaly::tasks::TaskReference> tasks, tessaly::base::Day day);
    void jumped(tessaly::app::Place place, std::size_t line);
    void dayChosen(tessaly::base::Day day);
    void undoAsked();

private:
    const grammar::DateStringHelper _days;
    TaskRowsView* const _rows;
};

}  // namespace tessaly::desktop
