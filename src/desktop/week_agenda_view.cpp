// SPDX-License-Identifier: MIT
#include "desktop/week_agenda_view.h"

#include <QVBoxLayout>
#include <memory>
#include <utility>

#include "desktop/qt_text.h"

namespace tessaly::desktop {
namespace {

// As wide as the editor's.
constexpr int agendaColumn = 760;
constexpr int agendaMargin = 42;

}  // namespace

WeekAgendaView::WeekAgendaView(grammar::DateStringHelper days, QWidget* parent)
    : QWidget(parent), _days{std::move(days)}, _rows{new TaskRowsView(this)} {
    setAccessibleName(trText("Week"));
    _rows->setAccessibleName(trText("Tasks of the week"));
    _rows->setColumn(agendaColumn, agendaMargin);
    _rows->delegate().setMeasure(14, 4);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(_rows);
}

void WeekAgendaView::show(const app::WeekAgenda& agenda, base::Day today) {
    const auto kept = std::make_shared<const app::WeekAgenda>(agenda);
    _rows->show(
        [this, kept, today](OverdueFold fold) {
            return rowsOf(*kept, TaskRowContext{today, fold, _days});
        },
        today);
}

}  // namespace tessaly::desktop
