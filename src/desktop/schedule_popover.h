// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "app/schedule_text.h"
#include "base/day.h"
#include "base/locale_formats.h"
#include "base/weekday.h"

class QLabel;
class QLineEdit;
class QListWidget;

namespace tessaly::desktop {

class SmallCalendar;

/// What the choice of a day goes by.
struct ScheduleContext {
    base::Day today{};
    base::DayOfWeek firstDayOfWeek = base::DayOfWeek::monday;
    base::LocaleFormats formats{"en"};
    /// The day that the calendar begins at, where it is not today: the task's own.
    std::optional<base::Day> current;
    QString title;  ///< over the field: "Schedule 3 tasks", "Go to date"; empty: none
};

/// Asks for a day: by a text ("fri", "+3d", "w12", "14"), by a choice, or in a small calendar. It
/// lies over the whole window as its child, so that it needs no compositor, and goes away with
/// Escape or a click beside it. Main thread.
class SchedulePopover : public QWidget {
    Q_OBJECT
public:
    /// Opens it by `anchor`, which is in the screen's coordinates: below it, else above, else
    /// where there is room. One that is open in `window` already goes away. `take` gets the day;
    /// when the user chooses none it is not called. Deletes itself, and gives the keys back to
    /// whom they belonged.
    static SchedulePopover* popUp(QWidget* window, QRect anchor, const ScheduleContext& context,
                                  std::function<void(base::Day day)> take);

    /// What Enter would take now.
    std::optional<base::Day> chosenDay() const { return _chosen; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    SchedulePopover(QWidget* window, QRect anchor, const ScheduleContext& context,
                    std::function<void(base::Day)> take);
    void build();
    void addChoices();
    void place();
    void readField();
    void choose(std::optional<base::Day> day);
    void moveChoice(int step);
    bool fieldKey(const QKeyEvent& event);
    void takeDay(base::Day day);
    void leave();

    const QRect _anchor;
    const ScheduleContext _context;
    const std::function<void(base::Day)> _take;
    const std::vector<app::ScheduleChoice> _offered;
    QPointer<QWidget> _focusBefore;
    std::optional<base::Day> _chosen;
    QWidget* const _panel;
    QLineEdit* const _field;
    QLabel* const _words;
    QListWidget* const _choices;
    SmallCalendar* const _calendar;
};

}  // namespace tessaly::desktop
