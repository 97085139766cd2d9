// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class QTextBlock;

namespace tessaly::desktop {

struct BlockLook;

/// Where the text of a document stands, in pixels.
struct TextColumn {
    qreal width = 0;
    qreal sideRoom = 0;  ///< on both sides of it, which prefixes may hang out into
};

/// Breaks and places the lines of a block, from the left of the left side room; how high it is.
qreal layOutBlock(const QTextBlock& block, const BlockLook& look, const TextColumn& column);

}  // namespace tessaly::desktop
