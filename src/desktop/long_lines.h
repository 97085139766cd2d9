// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tessaly::desktop {

/// Of a text whose lines end in "\n", in UTF-16 units without their ends.
qsizetype longestLineOf(const QString& text);
/// The text with a line break after every so many units of a line, for showing it.
QString inPieces(const QString& text);

}  // namespace tessaly::desktop
