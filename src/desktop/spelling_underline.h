// SPDX-License-Identifier: MIT
#pragma once

#include "base/text_range.h"

class QPainter;
class QTextBlock;

namespace tessaly::desktop {

/// Draws a wavy line below a word of a block that is laid out, whose layout stands at its place;
/// `word` in UTF-16 units of the block.
void paintSpellingUnderline(QPainter& painter, const QTextBlock& block, base::TextRange word);

}  // namespace tessaly::desktop
