// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QList>
#include <QTextLayout>

#include "desktop/block_style.h"

namespace tessaly::desktop {

/// What a line looks like in the colours of the theme, the upper ones last; `font` is the text's.
/// Markup that is quiet has no width.
QList<QTextLayout::FormatRange> formatsOf(const app::LineLook& line, const QString& text,
                                          Markup markup, const QFont& font);

/// Of text that is not seen, and has no width.
QTextCharFormat hiddenFormat();

/// Of an image, "![title](file)" at `span` of the text, where its title is; empty: it has none.
base::TextRange imageTitle(const QString& text, base::TextRange span);

}  // namespace tessaly::desktop
