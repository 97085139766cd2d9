// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>

class QPainter;

namespace tessaly::desktop {

/// How far the shadow of a floating panel reaches: the room that its widget has around it.
inline constexpr int shadowReach = 18;
inline constexpr int floatingRadius = 10;

/// A panel that lies over others, with its shadow, which is painted since there may be nobody who
/// draws one for windows.
void paintFloatingFrame(QPainter& painter, const QRect& panel);

/// Where a panel that belongs to `anchor` lies: below it and beginning with it where reading
/// begins; above where there is no room, or else beside it; inside of `room`, which fits it.
QRect floatingPlace(const QRect& anchor, QSize size, const QRect& room,
                    Qt::LayoutDirection direction);

}  // namespace tessaly::desktop
