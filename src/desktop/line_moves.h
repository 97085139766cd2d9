// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/document_edits.h"

class QTextDocument;

namespace tessaly::desktop {

/// Lines of a document, from 0, which it has.
struct Lines {
    int first = 0;
    int last = 0;
};

/// Where lines go to.
struct LineTarget {
    int before = 0;  ///< the line that will follow them; one more than there are: none
    int levels = 0;  ///< tabs that each of them gets, or, below 0, loses where it has them
};

/// The line that what is moved to the end comes before: the empty one behind a last line break.
int endForLines(const QTextDocument& document);

/// What moves lines. Empty: they stay as they are.
DocumentChanges changesThatMove(const QTextDocument& document, Lines lines, LineTarget target);

/// The number of the first of them afterwards.
int firstLineAfterMove(Lines lines, LineTarget target);

}  // namespace tessaly::desktop
