// SPDX-License-Identifier: MIT
#pragma once

#include <QPointF>

#include "desktop/line_moves.h"

class QPainter;

namespace tessaly::desktop {

class NoteLayout;

/// Lines that the pointer drags, with all that belong to the first of them, and where they would
/// be dropped. List items take the level that they are held at, as far as it makes sense there.
/// Places are in pixels of the document, which does not change meanwhile.
class LineDrag {
public:
    /// The line that is taken hold of, at `place`.
    LineDrag(const NoteLayout& layout, int line, QPointF place);

    void moveTo(QPointF place);
    Lines lines() const { return _lines; }
    LineTarget target() const { return _target; }
    /// Whether dropping them changes anything.
    bool isMove() const;
    void paint(QPainter& painter) const;

private:
    int lineAt(qreal y) const;
    int levelFor(int before, qreal x) const;

    const NoteLayout& _layout;
    const QPointF _start;
    Lines _lines;
    int _level = 0;  ///< of the first line; below 0: it has none
    LineTarget _target;
};

}  // namespace tessaly::desktop
