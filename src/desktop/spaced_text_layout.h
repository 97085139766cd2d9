// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextDocumentLayout>

namespace tessaly::desktop {

/// Lays a plain text out with room between its lines: what a line is apart from the next is two
/// thirds more than the font's size in pixels. The room lies below each line. A paragraph that is
/// read from right to left stands on the right.
class SpacedTextLayout : public QPlainTextDocumentLayout {
    Q_OBJECT
public:
    using QPlainTextDocumentLayout::QPlainTextDocumentLayout;

    /// From a line's top to the next one's.
    qreal pitchOf(const QTextLine& line) const;
    QRectF blockBoundingRect(const QTextBlock& block) const override;
};

}  // namespace tessaly::desktop
