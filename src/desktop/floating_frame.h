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

}  // namespace tessaly::desktop
