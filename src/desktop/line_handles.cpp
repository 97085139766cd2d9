// SPDX-License-Identifier: MIT
#include "desktop/line_handles.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextBlock>
#include <algorithm>
#include <cmath>

#include "desktop/icons.h"
#include "desktop/note_painter.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr qreal handleSize = 16;
constexpr qreal handleRoom = 4;
constexpr qreal signsWidth = 30;  ///< that boxes and bullets stand in, before the text
constexpr qreal markHeight = 18;
constexpr qreal markPadding = 6;
constexpr qreal roomBeforeMark = 8;
constexpr qreal dotRadius = 1.2;
constexpr qreal dotPitch = 4.5;

bool isMirrored(const PaintedBlock& painted) {
    return painted.look.isRightToLeft;
}

QString markText(const PaintedBlock& painted) {
    return QStringLiteral("… %1").arg(painted.hiddenLines);
}

QFont markFont(const PaintedBlock& painted) {
    const int size = static_cast<int>(std::lround(11 * scaleOf(painted.font)));
    return Theme::instance().uiFont(std::max(size, 9), QFont::Medium);
}

/// Signs that are shown stand out of the column. From where reading begins.
qreal firstSignIn(const PaintedBlock& painted, const QTextLine& line) {
    const QRectF words = line.naturalTextRect();
    return isMirrored(painted) ? painted.area.left() + painted.area.right() - words.right()
                               : words.left();
}

void paintGrip(QPainter& painter, const QRectF& place) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::instance().colors().text3);
    for (const int column : {0, 1}) {
        for (const int row : {-1, 0, 1}) {
            const QPointF dot(place.center().x() + (column - 0.5) * dotPitch,
                              place.center().y() + row * dotPitch);
            painter.drawEllipse(dot, dotRadius, dotRadius);
        }
    }
}

}  // namespace

QRectF mirroredIn(const PaintedBlock& painted, QRectF place) {
    if (isMirrored(painted)) {
        place.moveLeft(painted.area.left() + painted.area.right() - place.right());
    }
    return place;
}

QRectF handlePlace(const PaintedBlock& painted) {
    const QTextLayout& text = *painted.block.layout();
    if (text.lineCount() == 0 || painted.look.line.state == grammar::TodoType::empty) {
        return {};
    }
    const qreal signs = hasSigns(painted.look.line) ? signsWidth * scaleOf(painted.font) : 0;
    const QTextLine line = text.lineAt(0);
    const qreal words = painted.area.left() + painted.look.shape.indent - signs;
    const qreal end = std::min(words, firstSignIn(painted, line)) - handleRoom;
    if (end < handleSize) {
        return {};
    }
    const qreal y = painted.area.top() + line.y() + (line.height() - handleSize) / 2;
    return mirroredIn(painted,
                      {std::round(end - handleSize), std::round(y), handleSize, handleSize});
}

QRectF foldMarkPlace(const PaintedBlock& painted) {
    const QTextLayout& text = *painted.block.layout();
    if (painted.hiddenLines == 0 || text.lineCount() == 0) {
        return {};
    }
    const QTextLine line = text.lineAt(text.lineCount() - 1);
    const QRectF words = line.naturalTextRect();
    const qreal width =
        QFontMetricsF(markFont(painted)).horizontalAdvance(markText(painted)) + 2 * markPadding;
    const qreal height = std::round(markHeight * scaleOf(painted.font));
    const qreal x = isMirrored(painted)
                        ? std::max(words.left() - roomBeforeMark - width, painted.area.left())
                        : std::min(words.right() + roomBeforeMark, painted.area.right() - width);
    const qreal y = painted.area.top() + line.y() + (line.height() - height) / 2;
    return {std::round(x), std::round(y), std::ceil(width), height};
}

void paintHandle(QPainter& painter, const PaintedBlock& painted) {
    const bool isFolded = painted.hiddenLines > 0;
    const QRectF place = handlePlace(painted);
    if (place.isEmpty() || !(isFolded || painted.isPointed)) {
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor color = Theme::instance().colors().text2;
    if (isFolded) {
        paintIcon(painter, place,
                  isMirrored(painted) ? IconName::chevronLeft : IconName::chevronRight, color);
    } else if (painted.canFold) {
        paintIcon(painter, place, IconName::chevronDown, color);
    } else {
        paintGrip(painter, place);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void paintFoldMark(QPainter& painter, const PaintedBlock& painted) {
    const QRectF place = foldMarkPlace(painted);
    if (place.isEmpty()) {
        return;
    }
    const Colors& colors = Theme::instance().colors();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.codeBack);
    painter.drawRoundedRect(place, place.height() / 2, place.height() / 2);
    painter.setPen(colors.text2);
    painter.setFont(markFont(painted));
    painter.drawText(place, Qt::AlignCenter, markText(painted));
    painter.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace tessaly::desktop
