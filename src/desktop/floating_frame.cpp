// SPDX-License-Identifier: MIT
#include "desktop/floating_frame.h"

#include <QPainter>

#include "desktop/theme.h"

namespace tessaly::desktop {

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

}  // namespace tessaly::desktop
