// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "app/schedule_text.h"
#include "base/day.h"
#include "base/locale_formats.h"
#include "base/weekday.h"

class QLabel;

namespace tessaly::desktop {

class FloatingList;
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

/// What stands below a field that takes a day: what was understood in words, days to choose from,
/// and a small calendar; all three show the day that is chosen. Main thread.
class DayChoice : public QWidget {
    Q_OBJECT
public:
    /// One below the other, or days and calendar side by side, which takes less height.
    enum class Shape { column, wide };
    DayChoice(const ScheduleContext& context, Shape shape, QWidget* parent = nullptr);

    /// What a text in the field says is chosen; with an empty one nothing.
    void read(const QString& typed);
    /// The days to choose from, by a step down or up.
    void step(int rows);
    void moveMonths(int count);
    std::optional<base::Day> chosen() const { return _chosen; }
    /// The day that is chosen, or what is wrong, as it is shown.
    QString words() const;

    FloatingList& list() const { return *_list; }
    SmallCalendar& calendar() const { return *_calendar; }

    /// In pixels, of a column.
    static constexpr int columnWidth = 267;

Q_SIGNALS:
    /// The user has gone to a day, which is chosen now, without typing it.
    void moved();
    /// The user wants this day.
    void taken(tessaly::base::Day day);

private:
    enum class Typed { nothing, day, unknown };
    void build();
    void arrange(Shape shape);
    void choose(std::optional<base::Day> day, Typed typed);
    void tell();

    const ScheduleContext _context;
    const std::vector<app::ScheduleChoice> _offered;
    std::optional<base::Day> _chosen;
    Typed _typed = Typed::nothing;
    QLabel* const _words;
    FloatingList* const _list;
    SmallCalendar* const _calendar;
};

}  // namespace tessaly::desktop
