// SPDX-License-Identifier: MIT
#include "desktop/line_drag.h"

#include <QPainter>
#include <QTextBlock>
#include <algorithm>
#include <cmath>

#include "desktop/note_layout.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr qreal barHeight = 2;
constexpr qreal knobRadius = 3;

bool isItem(const app::OutlineLine& line) {
    return line.kind == app::OutlineLine::Kind::item;
}

int levelOf(const app::OutlineLine& line) {
    return static_cast<int>(line.indent / 4);
}

QTextBlock shownBefore(QTextBlock block) {
    while (block.isValid() && (!block.isVisible() || block.text().trimmed().isEmpty())) {
        block = block.previous();
    }
    return block;
}

}  // namespace

LineDrag::LineDrag(const NoteLayout& layout, int line, QPointF place)
    : _layout(layout), _start(place), _lines{line, layout.folds().lastOf(line).value_or(line)} {
    const app::OutlineLine head = layout.folds().outlineOf(line);
    _level = isItem(head) ? levelOf(head) : -1;
    _target.before = line;
}

void LineDrag::moveTo(QPointF place) {
    int before = lineAt(place.y());
    if (before > _lines.first && before <= _lines.last + 1) {
        before = _lines.first;
    }
    _target.before = before;
    _target.levels = _level < 0 ? 0 : levelFor(before, place.x()) - _level;
}

bool LineDrag::isMove() const {
    return _target.before != _lines.first || _target.levels != 0;
}

/// The line that one dropped there comes before.
int LineDrag::lineAt(qreal y) const {
    const QTextDocument& document = *_layout.document();
    QTextBlock block = document.findBlockByNumber(std::max(0, _layout.blockAt(y)));
    if (y > _layout.blockBoundingRect(block).center().y()) {
        do {
            block = block.next();
        } while (block.isValid() && !block.isVisible());
    }
    return std::min(block.isValid() ? block.blockNumber() : document.blockCount(),
                    endForLines(document));
}

int LineDrag::levelFor(int before, qreal x) const {
    const QTextDocument& document = *_layout.document();
    const bool isInPlace = before == _lines.first;
    QTextBlock above = before > 0 ? document.findBlockByNumber(before - 1) : QTextBlock();
    above = shownBefore(above);
    const QTextBlock below = document.findBlockByNumber(isInPlace ? _lines.last + 1 : before);
    int most = 0;
    if (above.isValid()) {
        const app::OutlineLine line = _layout.folds().outlineOf(above.blockNumber());
        const bool isFolded = _layout.folds().isFolded(above.blockNumber());
        most = isItem(line) ? levelOf(line) + (isFolded ? 0 : 1) : 0;
    }
    int least = 0;
    if (below.isValid()) {
        const app::OutlineLine line = _layout.folds().outlineOf(below.blockNumber());
        least = isItem(line) ? std::min(levelOf(line), most) : 0;
    }
    const qreal moved = (x - _start.x()) / levelWidth(document.defaultFont());
    const bool isMirrored = _layout.isRightToLeft(_lines.first);
    const int wanted = _level + static_cast<int>(std::lround(isMirrored ? -moved : moved));
    return std::clamp(wanted, least, most);
}

void LineDrag::paint(QPainter& painter) const {
    const QTextDocument& document = *_layout.document();
    const Colors& colors = Theme::instance().colors();
    QColor veil = colors.window;
    veil.setAlphaF(0.6F);
    const QTextBlock head = document.findBlockByNumber(_lines.first);
    const QRectF first = _layout.columnOf(head);
    const QRectF last = _layout.columnOf(document.findBlockByNumber(_lines.last));
    painter.fillRect(
        QRectF(0, first.top(), first.right() + first.left(), last.bottom() - first.top()), veil);
    const QTextBlock follower = document.findBlockByNumber(_target.before);
    const qreal y = follower.isValid() ? _layout.columnOf(follower).top()
                                       : _layout.columnOf(document.lastBlock()).bottom();
    const qreal indent = std::max(0, _level + _target.levels) * levelWidth(document.defaultFont());
    QRectF bar(first.left() + indent, std::round(y - barHeight / 2), first.width() - indent,
               barHeight);
    if (_layout.isRightToLeft(_lines.first)) {
        bar.moveLeft(first.left());
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.accent);
    painter.drawRect(bar);
    const qreal knob = _layout.isRightToLeft(_lines.first) ? bar.right() : bar.left();
    painter.drawEllipse(QPointF(knob, bar.center().y()), knobRadius, knobRadius);
}

}  // namespace tessaly::desktop
