// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <optional>

#include "base/day.h"
#include "base/locale_formats.h"
#include "base/weekday.h"

namespace tessaly::desktop {

/// The six weeks that show a month: a row with the days' letters, then a row a week, its number in
/// front. Main thread.
class MonthModel : public QAbstractTableModel {
    Q_OBJECT
public:
    MonthModel(base::DayOfWeek firstDayOfWeek, base::LocaleFormats formats, QObject* parent);

    void setMonth(std::chrono::year_month month);
    std::chrono::year_month month() const { return _month; }
    const base::LocaleFormats& formats() const { return _formats; }
    void setToday(base::Day today) { _today = today; }
    base::Day today() const { return _today; }

    /// Nothing: the cell is a letter or a week's number.
    std::optional<base::Day> dayAt(const QModelIndex& index) const;
    /// Invalid: the day is not shown.
    QModelIndex indexOf(base::Day day) const;

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 7; }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : 8;
    }
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    base::Day firstDay() const;
    QString shownText(const QModelIndex& index) const;
    QString spokenText(const QModelIndex& index) const;

    const base::DayOfWeek _firstDayOfWeek;
    const base::LocaleFormats _formats;
    std::chrono::year_month _month{};
    base::Day _today{};
};

}  // namespace tessaly::desktop
