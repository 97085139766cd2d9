// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QFont>
#include <QRectF>

#include "desktop/block_style.h"

class QPainter;
class QTextBlock;

namespace tessaly::desktop {

class NoteImages;

/// A block that is laid out.
struct PaintedBlock {
    const QTextBlock& block;
    const BlockLook& look;
    const QFont font;   ///< of the text
    const QRectF area;  ///< the column of text in it; places of lines are the document's
    bool isBoxHovered = false;
    bool isPointed = false;        ///< the pointer is in it
    bool canFold = false;          ///< asked of those that are pointed at alone
    int hiddenLines = 0;           ///< it is folded, where there are some
    NoteImages* images = nullptr;  ///< of its pictures
};

/// Its text, and all that is drawn with it: grounds, bars, the box, what is selected, the caret.
void paintBlock(QPainter& painter, const PaintedBlock& painted,
                const QAbstractTextDocumentLayout::PaintContext& context);

/// Where the box of a task is drawn; empty: there is none.
QRectF taskBoxOf(const PaintedBlock& painted);

/// Between a line and the one below it.
qreal middleOf(const QTextLine& upper, const QTextLine& lower);

}  // namespace tessaly::desktop
