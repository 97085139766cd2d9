// SPDX-License-Identifier: MIT
#include "desktop/small_calendar.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

#include "desktop/icons.h"
#include "desktop/month_model.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

constexpr int dayWidth = 33;
constexpr int dayHeight = 28;
constexpr int weekWidth = 28;
constexpr int daysBack = -7;

std::chrono::year_month monthOf(base::Day day) {
    return {day.year(), day.month()};
}

bool isWeekend(base::Day day) {
    const std::chrono::weekday weekday{std::chrono::sys_days{day}};
    return weekday == std::chrono::Saturday || weekday == std::chrono::Sunday;
}

class MonthDelegate : public QStyledItemDelegate {
public:
    explicit MonthDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

    void setChosen(bool isChosen) { _isChosen = isChosen; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto* const month = static_cast<const MonthModel*>(index.model());
        const Theme& theme = Theme::instance();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (const auto day = month->dayAt(index)) {
            paintCell(*painter, option, *day, *month);
        } else {
            painter->setFont(theme.uiFont(index.row() == 0 ? 11 : 10));
            painter->setPen(theme.colors().text2);
        }
        painter->drawText(option.rect, Qt::AlignCenter, index.data().toString());
        painter->restore();
    }

private:
    // Leaves font and pen for the number.
    void paintCell(QPainter& painter, const QStyleOptionViewItem& option, base::Day day,
                   const MonthModel& month) const {
        const Theme& theme = Theme::instance();
        const Colors& colors = theme.colors();
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        const bool isFilled = isSelected && _isChosen;
        const bool isToday = day == month.today();
        const QRectF circle(option.rect.center().x() - 12.5, option.rect.center().y() - 12.5, 26,
                            26);
        painter.setPen(isSelected && !isFilled ? QPen(colors.accent, 1.2) : QPen(Qt::NoPen));
        painter.setBrush(isFilled                                         ? QBrush(colors.accent)
                         : option.state.testFlag(QStyle::State_MouseOver) ? QBrush(colors.rowHover)
                                                                          : QBrush(Qt::NoBrush));
        painter.drawEllipse(circle);
        painter.setFont(theme.uiFont(12, isToday ? QFont::DemiBold : QFont::Normal));
        painter.setPen(isFilled                        ? colors.onAccent
                       : isToday                       ? colors.accent
                       : monthOf(day) != month.month() ? colors.text3
                       : isWeekend(day)                ? colors.text2
                                                       : colors.text);
    }

    bool _isChosen = false;
};

QToolButton* monthButton(const QString& name, QWidget* parent) {
    auto* const button = new QToolButton(parent);
    button->setObjectName(name);
    button->setAccessibleName(name);
    button->setToolTip(name);
    button->setFixedSize(24, 24);
    button->setFocusPolicy(Qt::NoFocus);  // Page Up and Page Down do the same
    return button;
}

void setUpTable(QTableView& table) {
    table.setFrameShape(QFrame::NoFrame);
    table.setShowGrid(false);
    table.horizontalHeader()->hide();
    table.verticalHeader()->hide();
    table.horizontalHeader()->setMinimumSectionSize(1);
    table.verticalHeader()->setMinimumSectionSize(1);
    table.verticalHeader()->setDefaultSectionSize(dayHeight);
    table.horizontalHeader()->setDefaultSectionSize(dayWidth);
    table.setColumnWidth(0, weekWidth);
    table.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table.setSelectionMode(QAbstractItemView::SingleSelection);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.setMouseTracking(true);
    table.setTabKeyNavigation(false);
    table.viewport()->setAutoFillBackground(false);
    table.setFixedSize(weekWidth + 7 * dayWidth, 7 * dayHeight);
}

}  // namespace

SmallCalendar::SmallCalendar(base::DayOfWeek firstDayOfWeek, base::LocaleFormats formats,
                             QWidget* parent)
    : QWidget(parent),
      _month{new MonthModel(firstDayOfWeek, std::move(formats), this)},
      _heading{new QLabel(this)},
      _previous{monthButton(trText("Previous Month"), this)},
      _next{monthButton(trText("Next Month"), this)},
      _table{new QTableView(this)} {
    _table->setModel(_month);
    _table->setItemDelegate(new MonthDelegate(_table));
    setUpTable(*_table);
    _table->setAccessibleName(trText("Calendar"));
    _table->installEventFilter(this);
    setFocusProxy(_table);
    auto* const top = new QHBoxLayout;
    top->setContentsMargins(6, 0, 2, 2);
    top->addWidget(_heading, 1);
    top->addWidget(_previous);
    top->addWidget(_next);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addLayout(top);
    column->addWidget(_table);
    connect(_previous, &QToolButton::clicked, this, [this] { moveMonths(-1); });
    connect(_next, &QToolButton::clicked, this, [this] { moveMonths(1); });
    connect(_table, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (const auto day = _month->dayAt(index)) {
            Q_EMIT taken(*day);
        }
    });
    connect(&Theme::instance(), &Theme::changed, this, &SmallCalendar::takeLook);
    takeLook();
}

void SmallCalendar::takeLook() {
    const Theme& theme = Theme::instance();
    // The style would fill the whole cell.
    QPalette palette = _table->palette();
    palette.setColor(QPalette::Highlight, Qt::transparent);
    _table->setPalette(palette);
    const bool isMirrored = isRightToLeft();
    _heading->setFont(theme.uiFont(13, QFont::DemiBold));
    _previous->setIcon(icon(isMirrored ? IconName::forward : IconName::back, theme.colors().text2));
    _next->setIcon(icon(isMirrored ? IconName::back : IconName::forward, theme.colors().text2));
}

void SmallCalendar::setToday(base::Day today) {
    _month->setToday(today);
    _table->viewport()->update();
}

void SmallCalendar::select(base::Day day) {
    if (_month->month() != monthOf(day)) {
        _month->setMonth(monthOf(day));
        _heading->setText(qt(_month->formats().day(day, "MMMMyyyy")));
    }
    _table->setCurrentIndex(_month->indexOf(day));
}

base::Day SmallCalendar::selectedDay() const {
    return _month->dayAt(_table->currentIndex()).value_or(_month->today());
}

void SmallCalendar::setChosen(bool isChosen) {
    static_cast<MonthDelegate*>(_table->itemDelegate())->setChosen(isChosen);
    _table->viewport()->update();
}

void SmallCalendar::moveMonths(int count) {
    goTo(base::addMonths(selectedDay(), count));
}

void SmallCalendar::goTo(base::Day day) {
    // Files name the years of four digits alone.
    if (day.year() < std::chrono::year{1} || day.year() > std::chrono::year{9998}) {
        return;
    }
    select(day);
    Q_EMIT selected(day);
}

bool SmallCalendar::moveByKey(int key) {
    const int forward = isRightToLeft() ? -1 : 1;
    switch (key) {
        case Qt::Key_Left: goTo(base::addDays(selectedDay(), -forward)); return true;
        case Qt::Key_Right: goTo(base::addDays(selectedDay(), forward)); return true;
        case Qt::Key_Up: goTo(base::addDays(selectedDay(), daysBack)); return true;
        case Qt::Key_Down: goTo(base::addDays(selectedDay(), -daysBack)); return true;
        case Qt::Key_PageUp: moveMonths(-1); return true;
        case Qt::Key_PageDown: moveMonths(1); return true;
        case Qt::Key_Home: goTo(_month->today()); return true;
        case Qt::Key_Return:
        case Qt::Key_Enter: Q_EMIT taken(selectedDay()); return true;
        default: return false;
    }
}

bool SmallCalendar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == _table && event->type() == QEvent::KeyPress &&
        moveByKey(static_cast<QKeyEvent*>(event)->key())) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tessaly::desktop
