// SPDX-License-Identifier: MIT
#pragma once

#include <QRectF>

class QPainter;

namespace tessaly::desktop {

struct PaintedBlock;

/// What stands before a line that is pointed at: a chevron where it can be folded, else a grip to
/// move it by. Folded lines always show theirs, and behind them how much they hide. Places are in
/// pixels of the document.

/// Where the handle is, shown or not; empty: the line is blank, or its signs leave no room.
QRectF handlePlace(const PaintedBlock& painted);
/// Empty: the line is not folded.
QRectF foldMarkPlace(const PaintedBlock& painted);

void paintHandle(QPainter& painter, const PaintedBlock& painted);
void paintFoldMark(QPainter& painter, const PaintedBlock& painted);

/// A rectangle of the block, given from where reading begins, where it is.
QRectF mirroredIn(const PaintedBlock& painted, QRectF place);

}  // namespace tessaly::desktop
