// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "app/day_pane.h"
#include "base/day.h"
#include "desktop/task_rows_view.h"
#include "grammar/date_string_helper.h"

namespace tessaly::desktop {

/// The seven days of a week in one column, in the middle of the window. Main thread.
class WeekAgendaView : public QWidget {
    Q_OBJECT
public:
    explicit WeekAgendaView(grammar::DateStringHelper days, QWidget* parent = nullptr);

    void show(const app::WeekAgenda& agenda, base::Day today);
    using QWidget::show;

    /// The tasks, which tell what the user does to them.
    TaskRowsView& rows() const { return *_rows; }

private:
    const grammar::DateStringHelper _days;
    TaskRowsView* const _rows;
};

}  // namespace tessaly::desktop
