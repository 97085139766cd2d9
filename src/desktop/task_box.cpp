// SPDX-License-Identifier: MIT
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <algorithm>

#include "desktop/task_rows.h"
#include "desktop/theme.h"

namespace tessaly::desktop {
namespace {

// All is drawn in a box from (0, 0) to (17, 17).
constexpr QRectF outline(0.8, 0.8, 15.4, 15.4);
constexpr double squareRadius = 4.5;

QPainterPath signOfState(grammar::TodoType state) {
    QPainterPath path;
    switch (state) {
        case grammar::TodoType::cancelled:
            path.moveTo(5.9, 5.9);
            path.lineTo(11.1, 11.1);
            path.moveTo(11.1, 5.9);
            path.lineTo(5.9, 11.1);
            break;
        case grammar::TodoType::scheduled:
            path.moveTo(7.3, 5.4);
            path.lineTo(10.4, 8.5);
            path.lineTo(7.3, 11.6);
            break;
        default:  // done, and the promise of it below the pointer
            path.moveTo(5.0, 8.8);
            path.lineTo(7.4, 11.1);
            path.lineTo(12.0, 6.2);
            break;
    }
    return path;
}

}  // namespace

void paintTaskBox(QPainter& painter, const QRectF& box, grammar::TodoType state, bool hovered,
                  BoxShape shape) {
    using grammar::TodoType;
    const Colors& colors = Theme::instance().colors();
    const bool isDone = state == TodoType::done;
    const bool isScheduled = state == TodoType::scheduled;
    const QColor ring = isDone || hovered ? colors.accent
                        : isScheduled     ? colors.orange
                                          : colors.text3;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.topLeft());
    const double scale = std::min(box.width(), box.height()) / 17.0;
    // The sign for "sent on" points where reading goes.
    const bool isMirrored = isScheduled && painter.layoutDirection() == Qt::RightToLeft;
    painter.scale(isMirrored ? -scale : scale, scale);
    painter.translate(isMirrored ? -17 : 0, 0);
    painter.setPen(QPen(ring, 1.6));
    painter.setBrush(isDone ? QBrush(ring) : QBrush(Qt::NoBrush));
    const double radius = shape == BoxShape::circle ? outline.width() / 2 : squareRadius;
    painter.drawRoundedRect(outline, radius, radius);
    if (state != TodoType::open || hovered) {
        const QColor sign = isDone ? colors.onAccent : ring;
        painter.setPen(QPen(sign, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(signOfState(state));
    }
    painter.restore();
}

}  // namespace tessaly::desktop
