// SPDX-License-Identifier: MIT
#include "desktop/wheel_zoom.h"

#include <QWheelEvent>

namespace tessaly::desktop {

WheelZoom::WheelZoom(QAbstractScrollArea& view) : QObject(&view) {
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
}

bool WheelZoom::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel) {
        return QObject::eventFilter(watched, event);
    }
    const auto& wheel = static_cast<const QWheelEvent&>(*event);
    if (!wheel.modifiers().testFlag(Qt::ControlModifier)) {
        return false;
    }
    _angle += wheel.angleDelta().y();
    if (const int steps = _angle / QWheelEvent::DefaultDeltasPerStep; steps != 0) {
        _angle -= steps * QWheelEvent::DefaultDeltasPerStep;
        Q_EMIT asked(steps);
    }
    event->accept();
    return true;
}

}  // namespace tessaly::desktop
