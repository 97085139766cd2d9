// SPDX-License-Identifier: MIT
#include "desktop/completion_panel.h"

#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "desktop/floating_frame.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int aroundContent = 6;
constexpr int insideOfWindow = 8;

}  // namespace

CompletionPanel::CompletionPanel(QWidget* window, QWidget* content) : QWidget(window) {
    hide();
    auto* const column = new QVBoxLayout(this);
    constexpr int around = shadowReach + aroundContent;
    column->setContentsMargins(around, around, around, around);
    column->addWidget(content);
    for (QWidget* const child : findChildren<QWidget*>()) {
        child->setFocusPolicy(Qt::NoFocus);
    }
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void CompletionPanel::popUp(const QRect& anchor) {
    layout()->activate();
    constexpr QMargins shadow(shadowReach, shadowReach, shadowReach, shadowReach);
    const QSize size = layout()->totalSizeHint().shrunkBy(shadow);
    constexpr QMargins inside(insideOfWindow, insideOfWindow, insideOfWindow, insideOfWindow);
    const QRect room = parentWidget()->rect().marginsRemoved(inside);
    const QRect local(parentWidget()->mapFromGlobal(anchor.topLeft()), anchor.size());
    setGeometry(floatingPlace(local, size, room, layoutDirection()).marginsAdded(shadow));
    show();
    raise();
}

QRect CompletionPanel::panel() const {
    constexpr QMargins shadow(shadowReach, shadowReach, shadowReach, shadowReach);
    return {mapToGlobal(QPoint(shadowReach, shadowReach)), size().shrunkBy(shadow)};
}

bool CompletionPanel::event(QEvent* event) {
    switch (event->type()) {
        // What is no row is nobody's, and not for what lies below.
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel: event->accept(); return true;
        default: return QWidget::event(event);
    }
}

void CompletionPanel::paintEvent(QPaintEvent*) {
    constexpr QMargins shadow(shadowReach, shadowReach, shadowReach, shadowReach);
    QPainter painter(this);
    paintFloatingFrame(painter, rect().marginsRemoved(shadow));
}

}  // namespace tessaly::desktop
