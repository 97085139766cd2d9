// SPDX-License-Identifier: MIT
#include "desktop/spelling_underline.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "desktop/block_style.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

// For a font of 15 px.
constexpr qreal waveLength = 5;
constexpr qreal waveHeight = 2.2;
constexpr qreal belowBaseline = 3.2;
constexpr qreal waveWidth = 1.1;

QPainterPath waveBetween(qreal left, qreal right, qreal y, qreal scale) {
    const qreal half = waveLength * scale / 2;
    QPainterPath wave(QPointF(left, y));
    qreal swing = waveHeight * scale;
    for (qreal x = left; x < right; x += half, swing = -swing) {
        wave.quadTo(x + half / 2, y + swing, x + half, y);
    }
    return wave;
}

}  // namespace

void paintSpellingUnderline(QPainter& painter, const QTextBlock& block, base::TextRange word) {
    const QTextLayout& text = *block.layout();
    const qreal scale = scaleOf(block.document()->defaultFont());
    for (int i = 0; i < text.lineCount(); ++i) {
        const QTextLine line = text.lineAt(i);
        const int from = std::max(static_cast<int>(word.location), line.textStart());
        const int to = std::min(static_cast<int>(word.end()), line.textStart() + line.textLength());
        if (from >= to) {
            continue;
        }
        // A word runs in one direction.
        const qreal start = line.cursorToX(from, QTextLine::Leading);
        const qreal end = line.cursorToX(to - 1, QTextLine::Trailing);
        const qreal lowest = line.height() - (waveHeight / 2 + waveWidth) * scale;
        const qreal y = line.y() + std::min(line.ascent() + belowBaseline * scale, lowest);
        painter.save();
        painter.translate(text.position());
        painter.setClipRect(
            QRectF(std::min(start, end), line.y(), std::abs(end - start), line.height()),
            Qt::IntersectClip);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Theme::instance().colors().red, waveWidth * scale));
        painter.drawPath(waveBetween(std::min(start, end), std::max(start, end), y, scale));
        painter.restore();
    }
}

}  // namespace tessaly::desktop
