// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QList>
#include <QRectF>
#include <QString>
#include <QTextBlockUserData>
#include <QTextLayout>
#include <cstddef>
#include <string>
#include <vector>

#include "app/line_look.h"

class QTextBlock;

namespace tessaly::desktop {

/// Whether a line shows its markup, as the caret's does.
enum class Markup { quiet, shown };

/// How a block is laid out, in pixels.
struct BlockShape {
    qreal pitch = 0;   ///< from a line's top to the next one's, at least
    qreal indent = 0;  ///< of its lines; the first one's prefix hangs out before it
    int prefix = 0;    ///< UTF-16 units that hang
    qreal above = 0;   ///< room
    qreal below = 0;
};

/// A picture below the lines of a block, or the words in its place.
struct BlockPicture {
    std::string name;  ///< below the folder of images
    std::size_t span;  ///< of the line, by its index
    QRectF place;      ///< from where the text begins, and the bottom of the lines
    QString problem;   ///< in words for the user; empty: it is shown
};

/// The words of a block, in UTF-16 units, that are or can be looked up; as of `SpellingMarks`.
struct BlockSpelling {
    std::vector<base::TextRange> words;
    std::vector<base::TextRange> wrong;
    int answers = -1;  ///< those that `wrong` is made of; -1: nobody has looked yet
};

/// What a block looks like, kept with it while it is laid out.
struct BlockLook : QTextBlockUserData {
    app::LineLook line;
    BlockShape shape;
    Markup markup = Markup::quiet;
    /// Whether reading goes to the left: by its words, and not by the "x" of a box.
    bool isRightToLeft = false;
    bool opensFence = false;  ///< of a fence's two lines
    /// What is added to the looks of the line, above them.
    QList<QTextLayout::FormatRange> formats;
    std::vector<BlockPicture> pictures;
    /// How long the line is that is drawn in the place of the text, from where that begins; 0: none
    /// is.
    qreal rule = 0;
    mutable BlockSpelling spelling;  ///< found out when the block is drawn

    /// Of the block, or nothing.
    static const BlockLook* of(const QTextBlock& block);
};

/// Sizes are given for a font of 15 px, and grow with it.
qreal scaleOf(const QFont& font);
/// From a line of usual text to the next.
qreal linePitch(const QFont& font);
/// From a level of indentation to the next.
qreal levelWidth(const QFont& font);

/// Of the first letter that says so, behind marker and box.
bool readsRightToLeft(const app::LineLook& line, const QString& text);

/// `font` is the text's.
BlockShape shapeOf(const app::LineLook& line, const QString& text, const QFont& font);

/// Sizes in pixels.
struct HeadingStyle {
    int size;
    QFont::Weight weight;
    qreal spacing;
    qreal pitch;
    qreal above;
};
const HeadingStyle& headingStyle(std::size_t level);

/// Whether a box is drawn for the line.
bool hasBox(const app::LineLook& line);
/// Whether a box, a bullet or a number hangs out before the text.
bool hasSigns(const app::LineLook& line);
/// Whether its colours are those of what is over.
bool isOver(const app::LineLook& line);
/// Whether a shape of its own colour lies behind the span.
bool hasGround(const app::LineLook& line, app::SpanKind kind);

}  // namespace tessaly::desktop
