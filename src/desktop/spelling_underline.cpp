// SPDX-License-Identifier: MIT
#include "desktop/spelling_underline.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
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

/// A wave that joins itself. Drawn once: a page may hold a hundred of these lines.
QPixmap waveTile(qreal scale, const QColor& color, qreal devicePixelRatio) {
    const int length = std::max(2, static_cast<int>(std::lround(waveLength * scale)));
    const int height = static_cast<int>(std::ceil((waveHeight + waveWidth) * scale));
    const QString key = QStringLiteral("spelling %1 %2 %3 %4")
                            .arg(color.name())
                            .arg(length)
                            .arg(height)
                            .arg(devicePixelRatio);
    QPixmap tile;
    if (QPixmapCache::find(key, &tile)) {
        return tile;
    }
    tile = QPixmap(QSizeF(length * devicePixelRatio, height * devicePixelRatio).toSize());
    tile.setDevicePixelRatio(devicePixelRatio);
    tile.fill(Qt::transparent);
    const qreal middle = height / 2.0;
    qreal swing = waveHeight * scale;
    QPainterPath wave(QPointF(-length, middle));
    for (qreal x = -length; x < 2 * length; x += length / 2.0, swing = -swing) {
        wave.quadTo(x + length / 4.0, middle + swing, x + length / 2.0, middle);
    }
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, waveWidth * scale));
    painter.drawPath(wave);
    QPixmapCache::insert(key, tile);
    return tile;
}

}  // namespace

void paintSpellingUnderline(QPainter& painter, const QTextBlock& block, base::TextRange word) {
    const QTextLayout& text = *block.layout();
    const qreal scale = scaleOf(block.document()->defaultFont());
    const QPixmap tile =
        waveTile(scale, Theme::instance().colors().red, painter.device()->devicePixelRatioF());
    const qreal height = tile.deviceIndependentSize().height();
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
        const qreal middle =
            std::min(line.ascent() + belowBaseline * scale, line.height() - height / 2);
        const QRectF place(std::min(start, end), line.y() + middle - height / 2,
                           std::abs(end - start), height);
        painter.drawTiledPixmap(place.translated(text.position()), tile);
    }
}

}  // namespace tessaly::desktop
