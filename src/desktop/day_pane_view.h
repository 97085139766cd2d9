// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "app/day_pane.h"
#include "base/day.h"
#include "desktop/task_rows_view.h"
#include "grammar/date_string_helper.h"

class QLabel;
class QToolButton;

namespace tessaly::desktop {

class ElidedLabel;

/// The day beside the note: its heading with a way to the days around it, what is overdue, and its
/// tasks. Main thread.
class DayPaneView : public QWidget {
    Q_OBJECT
public:
    explicit DayPaneView(grammar::DateStringHelper days, QWidget* parent = nullptr);

    void show(const app::DayPane& pane, base::Day today);
    using QWidget::show;

    /// The tasks, which tell what the user does to them.
    TaskRowsView& rows() const { return *_rows; }

Q_SIGNALS:
    /// By the arrows in the heading.
    void dayChosen(tessaly::base::Day day);

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
