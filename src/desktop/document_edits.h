// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTextCursor>
#include <QTextDocument>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_range.h"
#include "editor/edit.h"

namespace tessaly::desktop {

/// Texts of documents are those of `app::shownText`: a document's positions are their UTF-16 units,
/// and every block but the last ends in "\n".

/// A text as a document takes it, character by character: a byte-order mark inside stays.
QString documentText(std::string_view shown);
/// What a document holds, no-break spaces and U+2028 included; a lone surrogate reads as U+FFFD.
std::string textOfDocument(const QTextDocument& document);
/// What a cursor has selected, as `textOfDocument` gives it.
QString selectedTextOf(const QTextCursor& cursor);

base::TextRange selectionOf(const QTextCursor& cursor);
/// A cursor with that selection, whose end is where it moves on from.
QTextCursor cursorAt(QTextDocument& document, base::TextRange selection);

/// A stretch of a document, and what takes its place.
struct DocumentChange {
    int position = 0;
    int removed = 0;
    QString inserted;
    bool isBeforeLine = false;  ///< whole lines are put in before the one that begins there
};
using DocumentChanges = std::vector<DocumentChange>;

/// What must change in `from` to have `to`, by lines and by words within them; in order, none
/// overlapping.
DocumentChanges changesBetween(const std::string& from, const std::string& to);

/// Makes changes, in order and none overlapping, as one undo step.
void makeChanges(QTextDocument& document, const DocumentChanges& changes);

/// Where a position of the text before the changes lies in the text after them. What is put in
/// where it stands comes behind it, but for whole lines before its own.
int positionAfter(int position, const DocumentChanges& changes);

/// Makes an edit as one undo step, changing no more characters than it must.
void makeEdit(QTextDocument& document, const editor::Edit& edit);

}  // namespace tessaly::desktop
