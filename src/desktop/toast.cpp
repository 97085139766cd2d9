// SPDX-License-Identifier: MIT
#include "desktop/toast.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "desktop/command_actions.h"
#include "desktop/floating_frame.h"
#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int widestToast = 620;
constexpr int toastHeight = 42;
constexpr int signSize = 18;
constexpr int aboveBottom = 44;  // where the status line has its room

QAccessibleInterface* makeAlert(const QString& className, QObject* object) {
    if (className != QLatin1String(Toast::staticMetaObject.className())) {
        return nullptr;
    }
    return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::AlertMessage);
}

QString undoText() {
    const QString key = keysOf(app::commandRow(app::CommandId::undoTask))
                            .first()
                            .toString(QKeySequence::NativeText);
    return QStringLiteral("%1  %2").arg(trText("Undo"), key);
}

}  // namespace

Toast::Toast(QWidget* window) : QWidget(window) {
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(makeAlert), true);
    _sign = new QLabel;
    _text = new QLabel;
    _text->setTextFormat(Qt::PlainText);
    _undoButton = new QPushButton(undoText());
    _undoButton->setFlat(true);
    _undoButton->setCursor(Qt::PointingHandCursor);
    _undoButton->setAccessibleName(trText("Undo"));
    _undoButton->installEventFilter(this);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(shadowReach + 14, shadowReach, shadowReach + 14, shadowReach);
    row->setSpacing(10);
    row->addWidget(_sign);
    row->addWidget(_text, 1);
    row->addWidget(_undoButton);
    _timer.setSingleShot(true);
    connect(&_timer, &QTimer::timeout, this, [this] {
        if (!isHeld()) {
            hide();
        }
    });
    connect(_undoButton, &QPushButton::clicked, this, &Toast::undo);
    connect(&Theme::instance(), &Theme::changed, this, &Toast::dress);
    window->installEventFilter(this);
    dress();
    hide();
}

void Toast::show(const QString& text, bool isFailure, std::function<void()> undo, UndoKey key) {
    _undo = std::move(undo);
    _undoButton->setText(key == UndoKey::tasks ? undoText() : trText("Undo"));
    _undoButton->setAccessibleName(trText("Undo"));
    _sign->setVisible(isFailure);
    present(text);
}

void Toast::offer(const QString& text, const QString& button, std::function<void()> run) {
    _undo = std::move(run);
    _undoButton->setText(button);
    _undoButton->setAccessibleName(button);
    _sign->hide();
    present(text);
}

void Toast::present(const QString& text) {
    _undoButton->setVisible(_undo != nullptr);
    _text->setText(text);
    setAccessibleName(text);
    place();
    raise();
    QWidget::show();
    _timer.start(shownMilliseconds);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void Toast::undo() {
    hide();
    if (const auto run = std::exchange(_undo, nullptr)) {
        run();
    }
}

/// At the bottom, in the middle; a text that is too long is wrapped.
void Toast::place() {
    const int widest = std::min(parentWidget()->width(), widestToast + 2 * shadowReach);
    _text->setWordWrap(false);
    QSize size = layout()->sizeHint();
    if (size.width() > widest) {
        _text->setWordWrap(true);
        size = {widest, layout()->totalHeightForWidth(widest)};
    }
    size.setHeight(std::max(size.height(), toastHeight + 2 * shadowReach));
    resize(size);
    move((parentWidget()->width() - width()) / 2,
         parentWidget()->height() - height() - aboveBottom + shadowReach);
}

bool Toast::isHeld() const {
    return underMouse() || _undoButton->hasFocus();
}

void Toast::dress() {
    const Colors& colors = Theme::instance().colors();
    _text->setFont(Theme::instance().uiFont());
    _undoButton->setFont(Theme::instance().uiFont(13, QFont::DemiBold));
    _undoButton->setStyleSheet(
        QStringLiteral("QPushButton { border: 1px solid transparent; padding: "
                       "4px 8px; color: %1; } QPushButton:focus { "
                       "border-color: %1; }")
            .arg(colors.link.name()));
    _sign->setPixmap(iconPixmap(IconName::warning, colors.red, signSize, devicePixelRatioF()));
    update();
}

bool Toast::event(QEvent* event) {
    if (event->type() == QEvent::Leave && isVisible()) {
        _timer.start(shownMilliseconds);
    }
    return QWidget::event(event);
}

bool Toast::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible()) {
        place();
    }
    if (watched == _undoButton && event->type() == QEvent::FocusOut) {
        _timer.start(shownMilliseconds);
    }
    return QWidget::eventFilter(watched, event);
}

void Toast::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintFloatingFrame(painter,
                       rect().adjusted(shadowReach, shadowReach, -shadowReach, -shadowReach));
}

}  // namespace tessaly::desktop
