// SPDX-License-Identifier: MIT
#include "desktop/search_options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "base/enum_names.h"
#include "base/localisation.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

using base::N_;
using search::Filter;
using search::FilterItem;
using search::FilterParamater;
using search::FilterTimeframe;

constexpr int shadowSize = 12;
constexpr qreal popupRadius = 10;

struct OptionRow {
    FilterParamater parameter;
    const char* words;
};

constexpr std::array<OptionRow, 5> stateRows{
    {{FilterParamater::open, N_("Open")},
     {FilterParamater::done, N_("Done")},
     {FilterParamater::scheduled, N_("Scheduled")},
     {FilterParamater::canceled, N_("Cancelled")},
     {FilterParamater::noStatus, N_("Lines that are no task")}}};

constexpr std::array<OptionRow, 4> kindRows{{{FilterParamater::noteItem, N_("Notes")},
                                             {FilterParamater::calendarItem, N_("Days")},
                                             {FilterParamater::eventItem, N_("Events")},
                                             {FilterParamater::reminderItem, N_("Reminders")}}};

constexpr std::array<std::pair<FilterTimeframe, const char*>, 10> timeframeRows{
    {{FilterTimeframe::allTime, N_("Any time")},
     {FilterTimeframe::past, N_("Past")},
     {FilterTimeframe::future, N_("Future")},
     {FilterTimeframe::lastWeek, N_("Last week")},
     {FilterTimeframe::thisWeek, N_("This week")},
     {FilterTimeframe::nextWeek, N_("Next week")},
     {FilterTimeframe::lastMonth, N_("Last month")},
     {FilterTimeframe::thisMonth, N_("This month")},
     {FilterTimeframe::nextMonth, N_("Next month")},
     {FilterTimeframe::custom, N_("From … to …")}}};

const FilterItem* itemOf(const Filter& filter, FilterParamater parameter) {
    const auto found = std::find_if(filter.begin(), filter.end(), [&](const FilterItem& item) {
        return item.param == parameter;
    });
    return found == filter.end() ? nullptr : &*found;
}

QString valueOf(const Filter& filter, FilterParamater parameter) {
    const FilterItem* item = itemOf(filter, parameter);
    return item == nullptr ? QString() : qt(item->value());
}

int rowOfTimeframe(const Filter& filter) {
    const FilterItem* item = itemOf(filter, FilterParamater::timeframe);
    for (std::size_t row = 0; item != nullptr && row < timeframeRows.size(); ++row) {
        if (base::rawValue(timeframeRows[row].first) == item->value()) {
            return static_cast<int>(row);
        }
    }
    return 0;
}

QLabel* headingLabel(const QString& words, QWidget* parent) {
    auto* label = new QLabel(words, parent);
    label->setFont(Theme::instance().sectionFont());
    return label;
}

}  // namespace

SearchOptions::SearchOptions(QWidget* window, DayNamed dayNamed)
    : QFrame(window), _dayNamed(std::move(dayNamed)) {
    setAccessibleName(trText("Search options"));
    setFocusPolicy(Qt::StrongFocus);
    auto* rows = new QVBoxLayout(this);
    constexpr int inside = 16;
    rows->setContentsMargins(shadowSize + inside, shadowSize + inside - 2, shadowSize + inside,
                             shadowSize + inside);
    rows->setSpacing(10);
    addBoxes();
    addTimeframe();
    _clear = new QPushButton(trText("Clear options"), this);
    connect(_clear, &QAbstractButton::clicked, this, &SearchOptions::clearAll);
    rows->addWidget(_clear);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
    hide();
}

void SearchOptions::addBoxes() {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(28);
    grid->setVerticalSpacing(8);
    const auto addColumn = [&](int column, const QString& heading, const auto& options) {
        grid->addWidget(headingLabel(heading, this), 0, column);
        int line = 1;
        for (const OptionRow& option : options) {
            auto* box = new QCheckBox(trText(option.words), this);
            connect(box, &QCheckBox::toggled, this, &SearchOptions::tellChange);
            grid->addWidget(box, line++, column);
            _boxes.push_back({option.parameter, box});
        }
    };
    addColumn(0, trText("Tasks"), stateRows);
    addColumn(1, trText("Also show"), kindRows);
    static_cast<QVBoxLayout*>(layout())->addLayout(grid);
}

void SearchOptions::addTimeframe() {
    auto* rows = static_cast<QVBoxLayout*>(layout());
    rows->addSpacing(4);
    rows->addWidget(headingLabel(trText("When"), this));
    _timeframe = new QComboBox(this);
    _timeframe->setAccessibleName(trText("When"));
    for (const auto& [timeframe, words] : timeframeRows) {
        _timeframe->addItem(trText(words));
    }
    _timeframe->setMaxVisibleItems(static_cast<int>(timeframeRows.size()));
    connect(_timeframe, &QComboBox::currentIndexChanged, this, [this] {
        showDays();
        tellChange();
    });
    rows->addWidget(_timeframe);
    addDays();
}

void SearchOptions::addDays() {
    _days = new QWidget(this);
    auto* fields = new QHBoxLayout(_days);
    fields->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const QString& name) {
        auto* field = new QLineEdit(_days);
        field->setPlaceholderText(name);
        field->setAccessibleName(name);
        field->setToolTip(trText("A day: 2019-03-05, fri, tomorrow, +3d"));
        connect(field, &QLineEdit::textEdited, this, &SearchOptions::tellChange);
        fields->addWidget(field);
        return field;
    };
    _first = add(trText("First day"));
    _last = add(trText("Last day"));
    layout()->addWidget(_days);
}

void SearchOptions::popUp(const QRect& anchor, const Filter& filter) {
    setFilter(filter);
    showDays();
    const QSize size = sizeHint();
    const QRect room = parentWidget()->rect();
    const int wanted = isRightToLeft() ? anchor.left() : anchor.right() - size.width();
    const int left = std::clamp(wanted, room.left(), std::max(room.right() - size.width(), 0));
    setGeometry(QRect(QPoint(left, anchor.bottom() - shadowSize / 2), size));
    show();
    raise();
    _boxes.front().box->setFocus(Qt::PopupFocusReason);
    qApp->installEventFilter(this);
}

void SearchOptions::setFilter(const Filter& filter) {
    _isFilling = true;
    _kept.clear();
    for (const FilterItem& item : filter) {
        if (item.param == FilterParamater::keyword) {
            _kept.push_back(item);
        }
    }
    for (const Box& each : _boxes) {
        const bool isOn = itemOf(filter, each.parameter) != nullptr;
        const bool isOfCalendars = each.parameter == FilterParamater::eventItem ||
                                   each.parameter == FilterParamater::reminderItem;
        each.box->setChecked(isOn);
        each.box->setVisible(!isOfCalendars || isOn);
    }
    _timeframe->setCurrentIndex(rowOfTimeframe(filter));
    _first->setText(valueOf(filter, FilterParamater::startDate));
    _last->setText(valueOf(filter, FilterParamater::endDate));
    _isFilling = false;
    _clear->setEnabled(!this->filter().empty());
}

Filter SearchOptions::filter() const {
    Filter filter;
    for (const Box& each : _boxes) {
        if (each.box->isChecked()) {
            filter.emplace_back(each.parameter);
        }
    }
    const auto timeframe =
        timeframeRows[static_cast<std::size_t>(_timeframe->currentIndex())].first;
    if (timeframe != FilterTimeframe::allTime) {
        filter.emplace_back(FilterParamater::timeframe, std::string(base::rawValue(timeframe)));
    }
    const auto addDay = [&](FilterParamater parameter, const QLineEdit* field) {
        if (const auto day = _dayNamed(utf8(field->text()))) {
            filter.emplace_back(parameter, base::tagText(*day));
        }
    };
    if (timeframe == FilterTimeframe::custom) {
        addDay(FilterParamater::startDate, _first);
        addDay(FilterParamater::endDate, _last);
    }
    filter.insert(filter.end(), _kept.begin(), _kept.end());
    return filter;
}

void SearchOptions::tellChange() {
    if (_isFilling) {
        return;
    }
    const Filter now = filter();
    _clear->setEnabled(!now.empty());
    Q_EMIT changed(now);
}

void SearchOptions::clearAll() {
    setFilter({});
    tellChange();
}

void SearchOptions::showDays() {
    const auto row = static_cast<std::size_t>(_timeframe->currentIndex());
    _days->setVisible(timeframeRows[row].first == FilterTimeframe::custom);
    layout()->activate();
    resize(sizeHint());
}

void SearchOptions::dismiss() {
    if (isVisible()) {
        qApp->removeEventFilter(this);
        hide();
        Q_EMIT closed();
    }
}

void SearchOptions::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        dismiss();
        return;
    }
    QFrame::keyPressEvent(event);
}

/// A click beside it closes it; so does the focus when it goes elsewhere in the window.
bool SearchOptions::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) {
        auto* widget = qobject_cast<QWidget*>(watched);
        const bool isOurs = widget == nullptr || widget == this || isAncestorOf(widget) ||
                            widget->window() != window();
        if (!isOurs) {
            dismiss();
        }
    }
    return QFrame::eventFilter(watched, event);
}

bool SearchOptions::focusNextPrevChild(bool next) {
    QWidget* first = _boxes.front().box;
    QWidget* last = _clear->isEnabled() ? static_cast<QWidget*>(_clear) : _timeframe;
    QWidget* focus = focusWidget();
    if (next ? focus == last : focus == first) {
        (next ? first : last)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    return QFrame::focusNextPrevChild(next);
}

void SearchOptions::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Colors& colors = Theme::instance().colors();
    const QRectF body = QRectF(rect()).adjusted(shadowSize, shadowSize, -shadowSize, -shadowSize);
    painter.setPen(Qt::NoPen);
    for (int ring = shadowSize; ring > 0; --ring) {
        QColor shade(Qt::black);
        shade.setAlphaF(0.012F);
        painter.setBrush(shade);
        const qreal out = ring;
        painter.drawRoundedRect(body.adjusted(-out, -out + 3, out, out).intersected(rect()),
                                popupRadius + out, popupRadius + out);
    }
    painter.setPen(QPen(colors.line, 1));
    painter.setBrush(colors.window);
    painter.drawRoundedRect(body.adjusted(0.5, 0.5, -0.5, -0.5), popupRadius, popupRadius);
}

}  // namespace tessaly::desktop
