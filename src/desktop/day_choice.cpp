// SPDX-License-Identifier: MIT
#include "desktop/day_choice.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/floating_list.h"
#include "desktop/qt_text.h"
#include "desktop/small_calendar.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int betweenHalves = 12;
constexpr int narrowestList = 170;

}  // namespace

DayChoice::DayChoice(const ScheduleContext& context, Shape shape, QWidget* parent)
    : QWidget(parent),
      _context{context},
      _offered{app::scheduleChoices(context.today, context.firstDayOfWeek, context.formats)},
      _words{new QLabel(this)},
      _list{new FloatingList(this)},
      _calendar{new SmallCalendar(context.firstDayOfWeek, context.formats, this)} {
    build();
    arrange(shape);
    connect(_list, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        Q_EMIT taken(_offered[static_cast<std::size_t>(_list->row(item))].day);
    });
    connect(_calendar, &SmallCalendar::selected, this, [this](base::Day day) {
        choose(day, Typed::day);
        Q_EMIT moved();
    });
    connect(_calendar, &SmallCalendar::taken, this, &DayChoice::taken);
    connect(&Theme::instance(), &Theme::changed, this, &DayChoice::tell);
    _calendar->setToday(_context.today);
    read({});
}

void DayChoice::build() {
    _words->setFont(Theme::instance().uiFont(12));
    _words->setTextFormat(Qt::PlainText);
    _words->setWordWrap(true);
    std::vector<FloatingRow> rows;
    for (const app::ScheduleChoice& choice : _offered) {
        const QString text = qt(choice.text);
        const QString day = qt(_context.formats.day(choice.day, "EEEdMMM"));
        rows.push_back({text, day, QStringLiteral("%1, %2").arg(text, day), {}});
    }
    _list->setRows(rows);
    _list->setAccessibleName(trText("Days to choose from"));
}

void DayChoice::arrange(Shape shape) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(_words);
    if (shape == Shape::column) {
        column->addWidget(_list);
        column->addWidget(_calendar);
        setFixedWidth(columnWidth);
        return;
    }
    auto* const row = new QHBoxLayout;
    row->setSpacing(betweenHalves);
    _list->setFixedWidth(std::max(narrowestList, _list->wantedWidth()));
    row->addWidget(_list, 0, Qt::AlignTop);
    row->addWidget(_calendar, 0, Qt::AlignTop);
    column->addLayout(row);
}

void DayChoice::read(const QString& typed) {
    const auto day =
        app::scheduledDay(utf8(typed), _context.today, _context.firstDayOfWeek, _context.formats);
    choose(day, day ? Typed::day : typed.trimmed().isEmpty() ? Typed::nothing : Typed::unknown);
}

void DayChoice::step(int rows) {
    const int row = std::clamp(_list->currentRow() + rows, 0, _list->count() - 1);
    choose(_offered[static_cast<std::size_t>(row)].day, Typed::day);
    Q_EMIT moved();
}

void DayChoice::moveMonths(int count) {
    _calendar->moveMonths(count);
}

void DayChoice::choose(std::optional<base::Day> day, Typed typed) {
    _chosen = day;
    const auto offered =
        std::find_if(_offered.begin(), _offered.end(),
                     [&](const app::ScheduleChoice& choice) { return choice.day == day; });
    _list->choose(offered == _offered.end() ? -1 : static_cast<int>(offered - _offered.begin()));
    _calendar->select(day.value_or(_context.current.value_or(_context.today)));
    _calendar->setChosen(day.has_value());
    _typed = typed;
    tell();
}

void DayChoice::tell() {
    const Colors& colors = Theme::instance().colors();
    QPalette painted = _words->palette();
    painted.setColor(QPalette::WindowText, _typed == Typed::unknown ? colors.red
                                           : _typed == Typed::day   ? colors.text
                                                                    : colors.text2);
    _words->setPalette(painted);
    _words->setText(_typed == Typed::unknown ? trText("This is no day yet")
                    : _typed == Typed::day
                        ? qt(app::dayInWords(*_chosen, _context.today, _context.formats))
                        : trText("Type a day, or choose one"));
}

QString DayChoice::words() const {
    return _words->text();
}

}  // namespace tessaly::desktop
