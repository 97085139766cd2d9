// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QString>
#include <QTextBlockUserData>
#include <cstddef>
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
    mutable BlockSpelling spelling;  ///< found out when the block is drawn

    /// Of the block, or nothing.
    static const BlockLook* of(const QTextBlock& block);
};

/// Sizes are given for a font of 15 px, and grow with it.
qreal scaleOf(const QFont& font);
/// From a line of usual text to the next.
qreal linePitch(const QFont& font);

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
/// Whether its colours are those of what is over.
bool isOver(const app::LineLook& line);
/// Whether a shape of its own colour lies behind the span.
bool hasGround(const app::LineLook& line, app::SpanKind kind);

}  // namespace tessaly::desktop
