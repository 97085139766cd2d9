// SPDX-License-Identifier: MIT
#include "desktop/moved_words.h"

#include <QApplication>

namespace tessaly::desktop {

void MovedWords::moved(QPointF place, QPointF way) {
    _place = place;
    _way = way;
}

void MovedWords::press(const QMouseEvent& event) {
    const auto pause = event.timestamp() - _pressedAt;
    const bool isSecond = event.type() == QEvent::MouseButtonDblClick;
    const bool isSoon =
        isSecond || pause <= static_cast<quint64>(QApplication::doubleClickInterval());
    if (!isSoon || !isNear(event)) {
        _way = {};
    }
    _pressedAt = event.timestamp();
}

std::unique_ptr<QMouseEvent> MovedWords::follow(const QMouseEvent& event) const {
    // Who drags on means what is below the pointer.
    const QPointF way = isNear(event) ? _way : QPointF();
    auto there = std::make_unique<QMouseEvent>(
        event.type(), event.position() + way, event.scenePosition() + way, event.globalPosition(),
        event.button(), event.buttons(), event.modifiers(), event.pointingDevice());
    there->setTimestamp(event.timestamp());
    return there;
}

bool MovedWords::isNear(const QMouseEvent& event) const {
    return (event.position() - _place).manhattanLength() < QApplication::startDragDistance();
}

}  // namespace tessaly::desktop
