// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "base/day.h"
#include "base/locale_formats.h"
#include "base/weekday.h"

class QLabel;
class QTableView;
class QToolButton;

namespace tessaly::desktop {

class MonthModel;

/// A month to choose a day in: six weeks with their numbers, whatever the month's length. Arrows
/// move by days and weeks, Page Up and Down by months, Home to today; Enter takes. Main thread.
class SmallCalendar : public QWidget {
    Q_OBJECT
public:
    SmallCalendar(base::DayOfWeek firstDayOfWeek, base::LocaleFormats formats,
                  QWidget* parent = nullptr);

    void setToday(base::Day today);
    /// Marks a day and shows its month. `selected` is not told.
    void select(base::Day day);
    base::Day selectedDay() const;
    /// Whether the marked day is drawn as chosen, and not only as the one that keys start from.
    void setChosen(bool isChosen);
    void moveMonths(int count);

Q_SIGNALS:
    /// The user has gone to a day.
    void selected(tessaly::base::Day day);
    /// The user wants this day.
    void taken(tessaly::base::Day day);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool moveByKey(int key);
    void goTo(base::Day day);
    void takeLook();

    MonthModel* const _month;
    QLabel* const _heading;
    QToolButton* const _previous;
    QToolButton* const _next;
    QTableView* const _table;
};

}  // namespace tessaly::desktop
