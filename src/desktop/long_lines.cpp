// SPDX-License-Identifier: MIT
#include "desktop/long_lines.h"

#include <algorithm>

namespace tessaly::desktop {

namespace {

constexpr int pieceLength = 2000;

}  // namespace

qsizetype longestLineOf(const QString& text) {
    qsizetype longest = 0;
    qsizetype start = 0;
    for (;;) {
        const qsizetype end = text.indexOf(u'\n', start);
        longest = std::max(longest, (end < 0 ? text.size() : end) - start);
        if (end < 0) {
            return longest;
        }
        start = end + 1;
    }
}

QString inPieces(const QString& text) {
    QString pieces;
    int length = 0;
    for (const QChar c : text) {
        if (length >= pieceLength && !c.isLowSurrogate() && c != u'\n') {
            pieces += u'\n';
            length = 0;
        }
        pieces += c;
        length = c == u'\n' ? 0 : length + 1;
    }
    return pieces;
}

}  // namespace tessaly::desktop
