// SPDX-License-Identifier: MIT
#include "desktop/spaced_text_layout.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace tessaly::desktop {

qreal SpacedTextLayout::pitchOf(const QTextLine& line) const {
    const qreal wanted = std::round(document()->defaultFont().pixelSize() * 5.0 / 3);
    return std::max(wanted, line.height());
}

// The lines are laid out by the base, which packs them, whenever a block has changed.
QRectF SpacedTextLayout::blockBoundingRect(const QTextBlock& block) const {
    QRectF place = QPlainTextDocumentLayout::blockBoundingRect(block);
    if (!block.isValid() || !block.isVisible()) {
        return place;
    }
    const bool isMirrored = block.textDirection() == Qt::RightToLeft;
    const auto startOf = [&](const QTextLine& line) {
        const qreal room = line.width() - line.horizontalAdvance();
        return document()->documentMargin() + (isMirrored ? std::max(room, 0.0) : 0);
    };
    qreal bottom = 0;
    const QTextLayout& layout = *block.layout();
    for (int i = 0; i < layout.lineCount(); ++i) {
        QTextLine line = layout.lineAt(i);
        const QPointF wanted(startOf(line), bottom);
        if (line.position() != wanted) {
            line.setPosition(wanted);
        }
        bottom += pitchOf(line);
    }
    place.setHeight(bottom + (block.next().isValid() ? 0 : document()->documentMargin()));
    return place;
}

}  // namespace tessaly::desktop
