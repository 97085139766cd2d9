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

}  // namespace tessaly::desktop
