// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTextDocumentLayout>
#include <QFont>
#include <QString>

#include "desktop/block_style.h"

class QPainter;

namespace tessaly::desktop {

class NoteImages;
struct PaintedBlock;

/// The most that a picture may take, in pixels.
struct PictureRoom {
    qreal width = 0;
    qreal height = 0;
};

/// Finds the pictures of a line, with room for them below it. One that fills its line takes the
/// text's place while that is quiet. `text` is the line, `font` the text's.
void addPictures(BlockLook& look, const QString& text, NoteImages& images, const PictureRoom& room,
                 const QFont& font);

/// Where a picture of a block that is laid out is drawn, as the area of the block is given.
QRectF pictureArea(const PaintedBlock& painted, const BlockPicture& picture);

void paintPictures(QPainter& painter, const PaintedBlock& painted, NoteImages& images,
                   const QAbstractTextDocumentLayout::PaintContext& context);

}  // namespace tessaly::desktop
