// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>

#include "base/day.h"
#include "desktop/day_choice.h"

class QLineEdit;

namespace tessaly::desktop {

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
    std::optional<base::Day> chosenDay() const { return _choice->chosen(); }

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
    void place();
    bool fieldKey(const QKeyEvent& event);
    void takeDay(base::Day day);
    void leave();

    const QRect _anchor;
    const QString _title;
    const std::function<void(base::Day)> _take;
    QPointer<QWidget> _focusBefore;
    QWidget* const _panel;
    QLineEdit* const _field;
    DayChoice* const _choice;
};

}  // namespace tessaly::desktop
