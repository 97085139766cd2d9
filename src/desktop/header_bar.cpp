// SPDX-License-Identifier: MIT
#include "desktop/header_bar.h"

#include <QAbstractButton>
#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>

#include "desktop/command_actions.h"
#include "desktop/elided_label.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int headerHeight = 46;
constexpr int headerButtonSize = 28;
constexpr int leastTitleWidth = 64;  ///< of a longer title
constexpr int headerMargin = 12;
constexpr int headerSpacing = 10;
constexpr int roomForHistory = 440;  ///< else its buttons leave their place to the title

/// The button has an icon of its own, so it cannot be given the action as its default one.
void followAction(QAbstractButton* button, QAction* action) {
    const auto take = [button, action] {
        button->setEnabled(action->isEnabled());
        button->setCheckable(action->isCheckable());
        button->setChecked(action->isChecked());
        button->setToolTip(action->toolTip());
        button->setAccessibleName(action->iconText());
    };
    take();
    QObject::connect(action, &QAction::changed, button, take);
    QObject::connect(action, &QAction::toggled, button, take);
    QObject::connect(button, &QAbstractButton::clicked, action, [action, take] {
        action->trigger();
        take();  // a click has turned the button, whatever became of the command
    });
}

}  // namespace

HeaderBar::HeaderBar(QWidget* parent)
    : QWidget(parent),
      _left(new QHBoxLayout),
      _right(new QHBoxLayout),
      _title(new ElidedLabel(this)),
      _subtitle(new ElidedLabel(this)),
      _saveState(new ElidedLabel(this)) {
    setFixedHeight(headerHeight);
    setAccessibleName(trText("Header"));
    const Theme& theme = Theme::instance();
    _title->setFont(theme.uiFont(13, QFont::DemiBold));
    _title->setAlignment(Qt::AlignCenter);
    _subtitle->setFont(theme.uiFont(12));
    _subtitle->setTone(ElidedLabel::Tone::muted);
    _subtitle->setAlignment(Qt::AlignCenter);
    _subtitle->setWholeOnly(true);
    _subtitle->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    _saveState->setFont(theme.uiFont(12));
    _saveState->setTone(ElidedLabel::Tone::muted);
    _saveState->hide();

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(headerMargin, 0, headerMargin, 0);
    row->setSpacing(headerSpacing);
    for (QHBoxLayout* group : {_left, _right}) {
        group->setSpacing(2);
    }
    row->addLayout(_left);
    row->addWidget(_subtitle, 1);
    row->addWidget(_saveState);
    row->addLayout(_right);
    connect(&theme, &Theme::changed, this, &HeaderBar::paintIcons);
}

void HeaderBar::setActions(const CommandActions& actions) {
    using app::CommandId;
    const auto add = [&](QHBoxLayout* row, CommandId id, IconName name, IconName mirrored) {
        return addCommand(row, actions.action(id), name, mirrored);
    };
    _goBack = actions.action(CommandId::goBack);
    _goForward = actions.action(CommandId::goForward);
    add(_left, CommandId::toggleSideBar, IconName::sideBar, IconName::rightPane);
    _left->addSpacing(4);
    _back = add(_left, CommandId::goBack, IconName::arrowLeft, IconName::arrowRight);
    _forward = add(_left, CommandId::goForward, IconName::arrowRight, IconName::arrowLeft);
    _left->addSpacing(10);
    _dayBefore = add(_left, CommandId::goPreviousDay, IconName::back, IconName::forward);
    _left->addSpacing(4);
    _left->addWidget(_title);
    _left->addSpacing(4);
    _dayAfter = add(_left, CommandId::goNextDay, IconName::forward, IconName::back);
    _left->addSpacing(6);
    addTodayButton(actions.action(CommandId::goToday));

    add(_right, CommandId::newNote, IconName::plus, IconName::plus);
    _more = addButton(_right, IconName::more, IconName::more);
    _more->setPopupMode(QToolButton::InstantPopup);
    _more->setShortcut(Qt::Key_F10);
    _more->setToolTip(QStringLiteral("%1 (%2)").arg(
        trText("Menu"), _more->shortcut().toString(QKeySequence::NativeText)));
    _more->setAccessibleName(trText("Menu"));
    add(_right, CommandId::toggleRightPane, IconName::rightPane, IconName::sideBar);
    paintIcons();
}

QToolButton* HeaderBar::addButton(QHBoxLayout* row, IconName name, IconName mirrored) {
    auto* button = new QToolButton(this);
    button->setFixedSize(headerButtonSize, headerButtonSize);
    button->setIconSize({16, 16});
    button->setFocusPolicy(Qt::TabFocus);
    row->addWidget(button);
    _icons.push_back({button, name, mirrored});
    return button;
}

QToolButton* HeaderBar::addCommand(QHBoxLayout* row, QAction* action, IconName name,
                                   IconName mirrored) {
    QToolButton* button = addButton(row, name, mirrored);
    followAction(button, action);
    return button;
}

void HeaderBar::addTodayButton(QAction* action) {
    _today = new QPushButton(trText("Today"), this);
    _today->setFont(Theme::instance().uiFont(12, QFont::Medium));
    _today->setFixedHeight(headerButtonSize - 2);
    _today->setFocusPolicy(Qt::TabFocus);
    followAction(_today, action);
    _left->addWidget(_today);
}

void HeaderBar::setMenu(QMenu* menu) {
    _more->setMenu(menu);
}

void HeaderBar::setTitle(const QString& title) {
    _title->setText(title);
    fitTitle();
}

/// Before the title is cut, what is quiet beside it goes.
void HeaderBar::fitTitle() {
    const int wanted = _title->sizeHint().width();
    const int buttons = _left->sizeHint().width() - wanted + _right->sizeHint().width();
    const int room = width() - buttons - 2 * headerMargin - 3 * headerSpacing;
    _title->setMinimumWidth(std::min(wanted, std::max(leastTitleWidth, room)));
}

void HeaderBar::setSubtitle(const QString& subtitle) {
    _subtitle->setText(subtitle);
}

void HeaderBar::setCanGo(bool back, bool forward) {
    _goBack->setEnabled(back);
    _goForward->setEnabled(forward);
}

void HeaderBar::setDayArrows(bool areShown) {
    _dayBefore->setVisible(areShown);
    _dayAfter->setVisible(areShown);
    fitTitle();
}

void HeaderBar::setTodayButton(bool isShown) {
    _today->setVisible(isShown);
    fitTitle();
}

void HeaderBar::setSaveState(const QString& text, bool isLoud) {
    _saveState->setTone(isLoud ? ElidedLabel::Tone::loud : ElidedLabel::Tone::muted);
    _saveState->setFont(Theme::instance().uiFont(12, isLoud ? QFont::DemiBold : QFont::Normal));
    _saveState->setWholeOnly(!isLoud);
    _saveState->setText(text);
    _saveState->setVisible(!text.isEmpty());
}

void HeaderBar::paintIcons() {
    const QColor color = Theme::instance().colors().text2;
    for (const IconButton& each : _icons) {
        each.button->setIcon(icon(isRightToLeft() ? each.mirrored : each.name, color));
    }
    update();
}

bool HeaderBar::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        fitTitle();  // something beside it has another width
    }
    return QWidget::event(event);
}

void HeaderBar::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange) {
        paintIcons();
    }
    QWidget::changeEvent(event);
}

void HeaderBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    for (QToolButton* button : {_back, _forward}) {
        if (button != nullptr) {
            button->setVisible(width() >= roomForHistory);
        }
    }
    _saveState->setMaximumWidth(width() * 2 / 5);
    fitTitle();
}

void HeaderBar::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().colors().window);
}

}  // namespace tessaly::desktop
