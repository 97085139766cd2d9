// SPDX-License-Identifier: MIT
// What is where in a note that is laid out, and how it gets there.
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>

#include "desktop/block_lines.h"
#include "desktop/line_handles.h"
#include "desktop/note_layout.h"
#include "desktop/note_painter.h"

namespace tessaly::desktop {

namespace {

constexpr QRectF endless(0, 0, 1e9, 1e9);

}  // namespace

int NoteLayout::boxAt(const QPointF& place) const {
    const int number = blockAt(place.y());
    return boxOf(number).adjusted(-4, -4, 4, 4).contains(place) ? number : -1;
}

QRectF NoteLayout::boxOf(int number) const {
    const QTextBlock block = document()->findBlockByNumber(number);
    const BlockLook* look = shownLook(block);
    return look != nullptr && look->markup == Markup::quiet ? taskBoxOf(paintedBlock(block, *look))
                                                            : QRectF();
}

QRectF NoteLayout::handleOf(int number) const {
    const QTextBlock block = document()->findBlockByNumber(number);
    const BlockLook* look = shownLook(block);
    return look != nullptr ? handlePlace(paintedBlock(block, *look)) : QRectF();
}

bool NoteLayout::isRightToLeft(int number) const {
    const BlockLook* look = shownLook(document()->findBlockByNumber(number));
    return look != nullptr && look->isRightToLeft;
}

QRectF NoteLayout::foldMarkOf(int number) const {
    const QTextBlock block = document()->findBlockByNumber(number);
    const BlockLook* look = shownLook(block);
    return look != nullptr ? foldMarkPlace(paintedBlock(block, *look)) : QRectF();
}

/// Nothing: it is not laid out, or not shown.
const BlockLook* NoteLayout::shownLook(const QTextBlock& block) const {
    (void)blockBoundingRect(block);
    const bool isShown = block.isValid() && block.isVisible() && isKnown(block.blockNumber());
    return isShown ? BlockLook::of(block) : nullptr;
}

PaintedBlock NoteLayout::paintedBlock(const QTextBlock& block, const BlockLook& look) const {
    const int number = block.blockNumber();
    const bool isPointed = _pointedBlock == number;
    return {block,
            look,
            document()->defaultFont(),
            columnOf(block),
            _hoveredBox == number,
            isPointed,
            isPointed && _folds.canFold(number),
            _folds.hiddenBy(number),
            _images};
}

QRectF NoteLayout::columnOf(const QTextBlock& block) const {
    return blockBoundingRect(block).adjusted(_sideRoom, 0, -_sideRoom, 0);
}

void NoteLayout::draw(QPainter* painter, const PaintContext& context) {
    const QRectF clip = context.clip.isValid() ? context.clip : endless;
    for (QTextBlock block = document()->findBlockByNumber(blockAt(clip.top())); block.isValid();
         block = block.next()) {
        const QRectF area = blockBoundingRect(block);
        if (area.top() > clip.bottom()) {
            break;
        }
        const BlockLook* look = shownLook(block);
        if (look == nullptr) {
            continue;
        }
        // Also what screen readers ask for.
        block.layout()->setPosition(area.topLeft());
        paintBlock(*painter, paintedBlock(block, *look), context);
        if (_overlay) {
            _overlay(*painter, block);
        }
    }
}

int NoteLayout::hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const {
    const QTextBlock block = document()->findBlockByNumber(blockAt(point.y()));
    const QRectF area = blockBoundingRect(block);
    if (!block.isValid() || (accuracy == Qt::ExactHit && !area.contains(point))) {
        return -1;
    }
    const QTextLayout& text = *block.layout();
    const QPointF place = point - area.topLeft();
    for (int i = 0; i < text.lineCount(); ++i) {
        const QTextLine line = text.lineAt(i);
        const bool isLast = i + 1 == text.lineCount();
        if (!isLast && place.y() >= middleOf(line, text.lineAt(i + 1))) {
            continue;
        }
        if (accuracy == Qt::ExactHit && !line.naturalTextRect().contains(place)) {
            return -1;
        }
        int hit = line.xToCursor(place.x(), QTextLine::CursorBetweenCharacters);
        const int preedit = text.preeditAreaPosition();
        if (preedit >= 0 && hit > preedit) {
            hit -= std::min(hit - preedit, static_cast<int>(text.preeditAreaText().size()));
        }
        return block.position() + hit;
    }
    return block.position();
}

}  // namespace tessaly::desktop
