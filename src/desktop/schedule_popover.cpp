// SPDX-License-Identifier: MIT
#include "desktop/schedule_popover.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <iterator>
#include <utility>

#include "desktop/floating_frame.h"
#include "desktop/floating_list.h"
#include "desktop/qt_text.h"
#include "desktop/small_calendar.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

constexpr int panelPadding = 12;
constexpr int panelWidth = DayChoice::columnWidth + 2 * panelPadding;
constexpr int windowMargin = 8;

}  // namespace

SchedulePopover* SchedulePopover::popUp(QWidget* window, QRect anchor,
                                        const ScheduleContext& context,
                                        std::function<void(base::Day)> take) {
    for (SchedulePopover* const open :
         window->findChildren<SchedulePopover*>(QString(), Qt::FindDirectChildrenOnly)) {
        open->leave();
    }
    return new SchedulePopover(window, anchor, context, std::move(take));
}

SchedulePopover::SchedulePopover(QWidget* window, QRect anchor, const ScheduleContext& context,
                                 std::function<void(base::Day)> take)
    : QWidget(window),
      _anchor{anchor},
      _title{context.title},
      _take{std::move(take)},
      _focusBefore{window->window()->focusWidget()},
      _panel{new QWidget(this)},
      _field{new QLineEdit(_panel)},
      _choice{new DayChoice(context, DayChoice::Shape::column, _panel)} {
    setAccessibleName(_title.isEmpty() ? trText("Choose a day") : _title);
    build();
    window->installEventFilter(this);
    for (QWidget* const child :
         {static_cast<QWidget*>(_field), static_cast<QWidget*>(&_choice->list())}) {
        child->installEventFilter(this);
    }
    connect(_field, &QLineEdit::textEdited, _choice, &DayChoice::read);
    connect(_choice, &DayChoice::moved, _field, &QLineEdit::clear);
    connect(_choice, &DayChoice::taken, this, &SchedulePopover::takeDay);
    connect(&Theme::instance(), &Theme::changed, this, [this] { update(); });
    place();
    show();
    raise();
    _field->setFocus(Qt::PopupFocusReason);
}

void SchedulePopover::build() {
    const Theme& theme = Theme::instance();
    auto* const column = new QVBoxLayout(_panel);
    column->setContentsMargins(panelPadding, panelPadding, panelPadding, panelPadding);
    column->setSpacing(6);
    if (!_title.isEmpty()) {
        auto* const title = new QLabel(_title, _panel);
        title->setTextFormat(Qt::PlainText);
        title->setFont(theme.uiFont(13, QFont::DemiBold));
        column->addWidget(title);
    }
    _field->setPlaceholderText(trText("fri, +3d, w12, 14"));
    _field->setAccessibleName(trText("Day"));
    _field->setFont(theme.uiFont(14));
    column->addWidget(_field);
    column->addWidget(_choice);
    _panel->setFixedWidth(panelWidth);
}

void SchedulePopover::place() {
    setGeometry(parentWidget()->rect());
    _panel->adjustSize();
    const QSize size = _panel->sizeHint().expandedTo({panelWidth, 0});
    const QRect room = rect().adjusted(windowMargin, windowMargin, -windowMargin, -windowMargin);
    const QRect anchor(parentWidget()->mapFromGlobal(_anchor.topLeft()), _anchor.size());
    _panel->setGeometry(floatingPlace(anchor, size, room, layoutDirection()));
    update();
}

bool SchedulePopover::fieldKey(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (const auto day = _choice->chosen()) {
                takeDay(*day);
            }
            return true;
        case Qt::Key_Down: _choice->step(1); return true;
        case Qt::Key_Up: _choice->step(-1); return true;
        case Qt::Key_PageUp: _choice->moveMonths(-1); return true;
        case Qt::Key_PageDown: _choice->moveMonths(1); return true;
        default: return false;
    }
}

bool SchedulePopover::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        place();
    } else if (event->type() == QEvent::KeyPress && watched != parentWidget() &&
               fieldKey(*static_cast<QKeyEvent*>(event))) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void SchedulePopover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        leave();
    }
    // No key is for what lies below.
    event->accept();
}

bool SchedulePopover::event(QEvent* event) {
    // Nor is a shortcut of the window, while this is open.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool SchedulePopover::focusNextPrevChild(bool next) {
    QWidget* const stops[] = {_field, &_choice->list(), _choice->calendar().focusProxy()};
    const auto found = std::find(std::begin(stops), std::end(stops), window()->focusWidget());
    const auto index = found == std::end(stops) ? 0 : found - std::begin(stops);
    stops[(index + (next ? 1 : 2)) % 3]->setFocus(next ? Qt::TabFocusReason
                                                       : Qt::BacktabFocusReason);
    return true;
}

void SchedulePopover::takeDay(base::Day day) {
    const auto take = _take;
    leave();
    take(day);
}

void SchedulePopover::leave() {
    if (isHidden()) {
        return;
    }
    hide();
    if (_focusBefore) {
        _focusBefore->setFocus(Qt::PopupFocusReason);
    }
    deleteLater();
}

void SchedulePopover::mousePressEvent(QMouseEvent* event) {
    if (!_panel->geometry().contains(event->position().toPoint())) {
        leave();
    }
}

void SchedulePopover::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintFloatingFrame(painter, _panel->geometry());
}

}  // namespace tessaly::desktop
