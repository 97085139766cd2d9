// SPDX-License-Identifier: MIT
#include "desktop/month_model.h"

#include <utility>

#include <fmt/format.h>

#include "app/schedule_text.h"
#include "base/localisation.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

MonthModel::MonthModel(base::DayOfWeek firstDayOfWeek, base::LocaleFormats formats, QObject* parent)
    : QAbstractTableModel(parent), _firstDayOfWeek{firstDayOfWeek}, _formats{std::move(formats)} {}

void MonthModel::setMonth(std::chrono::year_month month) {
    beginResetModel();
    _month = month;
    endResetModel();
}

base::Day MonthModel::firstDay() const {
    return base::startOfWeek(_month / std::chrono::day{1}, base::toWeekday(_firstDayOfWeek));
}

std::optional<base::Day> MonthModel::dayAt(const QModelIndex& index) const {
    if (!index.isValid() || index.row() == 0 || index.column() == 0) {
        return std::nullopt;
    }
    return base::addDays(firstDay(), (index.row() - 1) * 7 + index.column() - 1);
}

QModelIndex MonthModel::indexOf(base::Day day) const {
    const int offset = base::daysBetween(firstDay(), day);
    return offset < 0 || offset >= 42 ? QModelIndex() : index(offset / 7 + 1, offset % 7 + 1);
}

QString MonthModel::shownText(const QModelIndex& index) const {
    const base::Day weekday = base::addDays(firstDay(), index.column() - 1);
    if (const auto day = dayAt(index)) {
        return qt(_formats.number(static_cast<unsigned>(day->day())));
    }
    if (index.row() > 0) {
        const base::Day inWeek = base::addDays(firstDay(), (index.row() - 1) * 7);
        return qt(_formats.number(app::weekNumber(inWeek, _firstDayOfWeek)));
    }
    return index.column() > 0 ? qt(_formats.day(weekday, "EEEEE")) : QString();
}

QString MonthModel::spokenText(const QModelIndex& index) const {
    if (const auto day = dayAt(index)) {
        const QString words = qt(_formats.day(*day, "EEEEdMMMMyyyy"));
        return *day == _today ? words + QStringLiteral(", ") + trText("today") : words;
    }
    if (index.row() > 0) {
        return qt(fmt::format(fmt::runtime(base::tr("Week {}")), utf8(shownText(index))));
    }
    return index.column() > 0
               ? qt(_formats.day(base::addDays(firstDay(), index.column() - 1), "EEEE"))
               : trText("Week");
}

QVariant MonthModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole: return shownText(index);
        case Qt::AccessibleTextRole: return spokenText(index);
        default: return {};
    }
}

Qt::ItemFlags MonthModel::flags(const QModelIndex& index) const {
    return dayAt(index) ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

}  // namespace tessaly::desktop
