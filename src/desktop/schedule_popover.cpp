// SPDX-License-Identifier: MIT
#include "desktop/schedule_popover.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/floating_frame.h"
#include "desktop/qt_text.h"
#include "desktop/small_calendar.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

constexpr int panelWidth = 291;
constexpr int panelPadding = 12;
constexpr int choiceHeight = 28;
constexpr int windowMargin = 8;
constexpr int dayTextRole = Qt::UserRole;

/// "Tomorrow" and, at the row's end, "Wed, 6 Mar".
class ChoiceDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Theme& theme = Theme::instance();
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (isSelected || option.state.testFlag(QStyle::State_MouseOver)) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(isSelected ? theme.colors().rowSelected : theme.colors().rowHover);
            painter->drawRoundedRect(option.rect, 6, 6);
        }
        const QRect place = option.rect.adjusted(8, 0, -8, 0);
        const auto draw = [&](const QString& text, int size, const QColor& color,
                              Qt::Alignment side) {
            painter->setFont(theme.uiFont(size));
            painter->setPen(color);
            painter->drawText(place,
                              static_cast<int>(QStyle::visualAlignment(option.direction, side) |
                                               Qt::AlignVCenter),
                              text);
        };
        draw(index.data().toString(), 13, theme.colors().text, Qt::AlignLeft);
        draw(index.data(dayTextRole).toString(), 12, theme.colors().text2, Qt::AlignRight);
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {80, choiceHeight};
    }
};

QRect keptInside(QRect rect, const QRect& room) {
    rect.moveLeft(std::clamp(rect.left(), room.left(),
                             std::max(room.left(), room.right() - rect.width() + 1)));
    rect.moveTop(std::clamp(rect.top(), room.top(),
                            std::max(room.top(), room.bottom() - rect.height() + 1)));
    return rect;
}

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
      _context{context},
      _take{std::move(take)},
      _offered{app::scheduleChoices(context.today, context.firstDayOfWeek, context.formats)},
      _focusBefore{window->window()->focusWidget()},
      _panel{new QWidget(this)},
      _field{new QLineEdit(_panel)},
      _words{new QLabel(_panel)},
      _choices{new QListWidget(_panel)},
      _calendar{new SmallCalendar(context.firstDayOfWeek, context.formats, _panel)} {
    setAccessibleName(_context.title.isEmpty() ? trText("Choose a day") : _context.title);
    addChoices();
    build();
    window->installEventFilter(this);
    for (QWidget* const child : {static_cast<QWidget*>(_field), static_cast<QWidget*>(_choices)}) {
        child->installEventFilter(this);
    }
    connect(_field, &QLineEdit::textEdited, this, &SchedulePopover::readField);
    connect(_choices, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        takeDay(_offered[static_cast<std::size_t>(_choices->row(item))].day);
    });
    connect(_calendar, &SmallCalendar::selected, this, [this](base::Day day) {
        _field->clear();
        choose(day);
    });
    connect(_calendar, &SmallCalendar::taken, this, &SchedulePopover::takeDay);
    connect(&Theme::instance(), &Theme::changed, this, [this] { update(); });
    _calendar->setToday(_context.today);
    choose(std::nullopt);
    place();
    show();
    raise();
    _field->setFocus(Qt::PopupFocusReason);
}

void SchedulePopover::addChoices() {
    _choices->setItemDelegate(new ChoiceDelegate(_choices));
    _choices->setFrameShape(QFrame::NoFrame);
    _choices->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _choices->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _choices->setMouseTracking(true);
    _choices->viewport()->setAutoFillBackground(false);
    QPalette plain = _choices->palette();
    plain.setColor(QPalette::Highlight, Qt::transparent);
    _choices->setPalette(plain);
    _choices->setAccessibleName(trText("Days to choose from"));
    for (const app::ScheduleChoice& choice : _offered) {
        auto* const item = new QListWidgetItem(qt(choice.text), _choices);
        const QString day = qt(_context.formats.day(choice.day, "EEEdMMM"));
        item->setData(dayTextRole, day);
        item->setData(Qt::AccessibleTextRole, QStringLiteral("%1, %2").arg(item->text(), day));
    }
    _choices->setFixedHeight(choiceHeight * _choices->count());
}

void SchedulePopover::build() {
    const Theme& theme = Theme::instance();
    auto* const column = new QVBoxLayout(_panel);
    column->setContentsMargins(panelPadding, panelPadding, panelPadding, panelPadding);
    column->setSpacing(6);
    if (!_context.title.isEmpty()) {
        auto* const title = new QLabel(_context.title, _panel);
        title->setTextFormat(Qt::PlainText);
        title->setFont(theme.uiFont(13, QFont::DemiBold));
        column->addWidget(title);
    }
    _field->setPlaceholderText(trText("fri, +3d, w12, 14"));
    _field->setAccessibleName(trText("Day"));
    _field->setFont(theme.uiFont(14));
    _words->setFont(theme.uiFont(12));
    _words->setTextFormat(Qt::PlainText);
    _words->setWordWrap(true);
    for (QWidget* const child :
         {static_cast<QWidget*>(_field), static_cast<QWidget*>(_words),
          static_cast<QWidget*>(_choices), static_cast<QWidget*>(_calendar)}) {
        column->addWidget(child);
    }
    _panel->setFixedWidth(panelWidth);
}

// Below the anchor, and beginning with it where reading begins; above, or beside it, else.
void SchedulePopover::place() {
    setGeometry(parentWidget()->rect());
    _panel->adjustSize();
    const QSize size = _panel->sizeHint().expandedTo({panelWidth, 0});
    const QRect room = rect().adjusted(windowMargin, windowMargin, -windowMargin, -windowMargin);
    const QRect anchor(parentWidget()->mapFromGlobal(_anchor.topLeft()), _anchor.size());
    const int left = isRightToLeft() ? anchor.right() - panelWidth + 1 : anchor.left();
    QRect panel(QPoint(left, anchor.bottom() + 5), size);
    if (panel.bottom() > room.bottom()) {
        panel.moveBottom(anchor.top() - 5);
    }
    if (panel.top() < room.top()) {
        const bool isRoomBefore = anchor.left() - 5 - size.width() >= room.left();
        panel.moveLeft(isRoomBefore ? anchor.left() - 5 - size.width() : anchor.right() + 5);
    }
    _panel->setGeometry(keptInside(panel, room));
    update();
}

void SchedulePopover::readField() {
    const std::string text = utf8(_field->text());
    choose(app::scheduledDay(text, _context.today, _context.firstDayOfWeek, _context.formats));
}

void SchedulePopover::choose(std::optional<base::Day> day) {
    _chosen = day;
    const auto offered =
        std::find_if(_offered.begin(), _offered.end(),
                     [&](const app::ScheduleChoice& choice) { return choice.day == day; });
    _choices->setCurrentRow(
        offered == _offered.end() ? -1 : static_cast<int>(offered - _offered.begin()));
    _calendar->select(day.value_or(_context.current.value_or(_context.today)));
    _calendar->setChosen(day.has_value());
    const Colors& colors = Theme::instance().colors();
    const bool isUnknown = !day && !_field->text().trimmed().isEmpty();
    QPalette palette = _words->palette();
    palette.setColor(QPalette::WindowText, isUnknown ? colors.red
                                           : day     ? colors.text
                                                     : colors.text2);
    _words->setPalette(palette);
    _words->setText(day         ? qt(app::dayInWords(*day, _context.today, _context.formats))
                    : isUnknown ? trText("This is no day yet")
                                : trText("Type a day, or choose one"));
}

void SchedulePopover::moveChoice(int step) {
    const int last = _choices->count() - 1;
    const int row = std::clamp(_choices->currentRow() + step, 0, last);
    _field->clear();
    choose(_offered[static_cast<std::size_t>(row)].day);
}

bool SchedulePopover::fieldKey(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (_chosen) {
                takeDay(*_chosen);
            }
            return true;
        case Qt::Key_Down: moveChoice(1); return true;
        case Qt::Key_Up: moveChoice(-1); return true;
        case Qt::Key_PageUp: _calendar->moveMonths(-1); return true;
        case Qt::Key_PageDown: _calendar->moveMonths(1); return true;
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
    QWidget* const stops[] = {_field, _choices, _calendar->focusProxy()};
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
