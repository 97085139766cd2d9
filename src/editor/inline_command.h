// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/text_range.h"
#include "editor/edit.h"
#include "editor/mark_action.h"

namespace tessaly::editor {

struct MarkRecord;

/// Bold, italic, inline code or a link: marks around what is selected, of each line by itself, or
/// off again where it has them. Line prefixes, boxes and the blanks at either end stay outside the
/// marks; only a link takes the place of a prefix that is selected. Linear in the text.
///
/// - Marks in the selection, or directly around it, are taken off, all of them.
/// - With nothing selected, the marks are written with the cursor between them; between empty marks
///   they are taken off. A link is made of the word under the cursor, and has the cursor where its
///   address goes; without a word the cursor is where the words go.
/// - What was selected stays so: within new marks if it was just the words, else around them.
/// - Lines that the record excludes stay as they are, and so do blank ones; with nothing selected a
///   blank line gets its marks.
/// - A user-perceived character is selected as a whole; a cursor within one stands before it.
///
/// Nothing: no line is changed. Where that is because there is nothing to put marks around it is
/// logged: "Could not insert mark " with the action.
std::optional<Edit> applyInline(const MarkRecord& record, MarkAction action, std::string_view text,
                                base::TextRange selection);

}  // namespace tessaly::editor
