// SPDX-License-Identifier: MIT
#include "desktop/day_pane_view.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>
#include <memory>
#include <utility>

#include "desktop/elided_label.h"
#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

DayPaneView::DayPaneView(grammar::DateStringHelper days, QWidget* parent)
    : QWidget(parent),
      _days{std::move(days)},
      _heading{new ElidedLabel(this)},
      _relative{new QLabel(this)},
      _previous{dayButton(-1)},
      _next{dayButton(1)},
      _rows{new TaskRowsView(this)} {
    setAccessibleName(trText("Day"));
    _rows->setAccessibleName(trText("Tasks of the day"));
    auto* const top = new QHBoxLayout;
    top->setContentsMargins(18, 12, 10, 8);
    top->setSpacing(4);
    top->addWidget(_heading, 1);
    top->addWidget(_relative);
    top->addSpacing(4);
    top->addWidget(_previous);
    top->addWidget(_next);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(top);
    column->addWidget(_rows, 1);
    connect(&Theme::instance(), &Theme::changed, this, &DayPaneView::takeLook);
    takeLook();
}

QToolButton* DayPaneView::dayButton(int days) {
    auto* const button = new QToolButton(this);
    const app::CommandRow& command =
        app::commandRow(days < 0 ? app::CommandId::goPreviousDay : app::CommandId::goNextDay);
    button->setAccessibleName(trText(command.text));
    const QKeySequence key(QString::fromLatin1(command.keys).section(QLatin1Char(' '), 0, 0));
    button->setToolTip(QStringLiteral("%1 (%2)").arg(trText(command.text),
                                                     key.toString(QKeySequence::NativeText)));
    button->setFixedSize(26, 26);
    connect(button, &QToolButton::clicked, this, [this, days] {
        _day = base::addDays(_day, days);  // the next click may come before the day is shown
        Q_EMIT dayChosen(_day);
    });
    return button;
}

void DayPaneView::show(const app::DayPane& pane, base::Day today) {
    _day = pane.day;
    _heading->setText(qt(pane.heading));
    const QString relative = qt(pane.relative);
    _relative->setText(relative.left(1).toUpper() + relative.mid(1));
    const auto kept = std::make_shared<const app::DayPane>(pane);
    _rows->show(
        [this, kept, today](OverdueFold fold) {
            return rowsOf(*kept, TaskRowContext{today, fold, _days});
        },
        today);
}

void DayPaneView::takeLook() {
    const Theme& theme = Theme::instance();
    _heading->setFont(theme.uiFont(13, QFont::DemiBold));
    _relative->setFont(theme.uiFont(12));
    QPalette quiet = _relative->palette();
    quiet.setColor(QPalette::WindowText, theme.colors().text2);
    _relative->setPalette(quiet);
    const bool isMirrored = isRightToLeft();
    _previous->setIcon(icon(isMirrored ? IconName::forward : IconName::back, theme.colors().text2));
    _next->setIcon(icon(isMirrored ? IconName::back : IconName::forward, theme.colors().text2));
    update();
}

void DayPaneView::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().colors().rightPane);
}

}  // namespace tessaly::desktop
