// SPDX-License-Identifier: MIT
#include "desktop/floating_frame.h"

#include <QPainter>
#include <algorithm>

#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int besideAnchor = 5;

QRect keptInside(QRect rect, const QRect& room) {
    rect.moveLeft(std::clamp(rect.left(), room.left(),
                             std::max(room.left(), room.right() - rect.width() + 1)));
    rect.moveTop(std::clamp(rect.top(), room.top(),
                            std::max(room.top(), room.bottom() - rect.height() + 1)));
    return rect;
}

}  // namespace

void paintFloatingFrame(QPainter& painter, const QRect& panel) {
    constexpr int fall = 3;  // the light comes from above
    const Theme& theme = Theme::instance();
    QColor shade(Qt::black);
    shade.setAlpha(theme.isDark() ? 9 : 3);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade);
    for (int reach = shadowReach - fall; reach > 0; --reach) {
        painter.drawRoundedRect(panel.adjusted(-reach, fall - reach, reach, fall + reach),
                                floatingRadius + reach, floatingRadius + reach);
    }
    painter.setPen(QPen(theme.colors().line, 1));
    painter.setBrush(theme.colors().window);
    painter.drawRoundedRect(QRectF(panel).adjusted(0.5, 0.5, -0.5, -0.5), floatingRadius,
                            floatingRadius);
    painter.restore();
}

QRect floatingPlace(const QRect& anchor, QSize size, const QRect& room,
                    Qt::LayoutDirection direction) {
    const int left =
        direction == Qt::RightToLeft ? anchor.right() - size.width() + 1 : anchor.left();
    QRect panel(QPoint(left, anchor.bottom() + besideAnchor), size);
    if (panel.bottom() > room.bottom()) {
        panel.moveBottom(anchor.top() - besideAnchor);
    }
    if (panel.top() < room.top()) {
        const int before = anchor.left() - besideAnchor - size.width();
        panel.moveLeft(before >= room.left() ? before : anchor.right() + besideAnchor);
    }
    return keptInside(panel, room);
}

}  // namespace tessaly::desktop
