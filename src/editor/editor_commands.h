// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "base/failure.h"
#include "base/text_range.h"
#include "base/todo_character.h"
#include "editor/edit.h"
#include "editor/mark_action.h"
#include "grammar/todo.h"

namespace tessaly::editor {

/// What the commands depend on.
struct MarkSettings {
    grammar::MarkerSettings markers;
    base::TodoCharacter defaultTodoCharacter = base::TodoCharacter::asterisk;
};

/// Commands of an editor: functions of a text and what is selected in it, in UTF-16 units; a text
/// without a byte-order mark. They cannot be told how long the text may be: all are linear in it.
/// Line breaks stay as they are. Any thread.

/// Nothing: there is nothing to change. Failures, in words for the user: `malformed`: the selection
/// goes past the end of the text or splits a surrogate pair; `tooLarge`: a selected line is too
/// long for the patterns of the command. Logs "Could not increment numberin text: " with the line
/// where no number can be worked out, and "Could not insert mark " where a mark finds no place.
base::Result<std::optional<Edit>> mark(MarkAction action, std::string_view text,
                                       base::TextRange selection, const MarkSettings& settings);

/// Enter: begins a new line like the one that the selection starts in, with the same indentation
/// and marker, the next number, and an open box where there is one; behind an item without content
/// the list ends instead, and the item's marker goes. Nothing: the line is no list item, quote or
/// task, or the cursor stands before its content; a plain line break is due.
std::optional<Edit> continueList(std::string_view text, base::TextRange selection);

/// Tab and Shift+Tab: list items, and whatever is selected over several lines, move by one tab;
/// nothing where a tab is just a character, or nothing is left to take off.
enum class Indentation { more, less };
std::optional<Edit> indent(std::string_view text, base::TextRange selection,
                           Indentation indentation);

/// The word under the cursor, or beside it: the characters around it other than white space and
/// "@,，;.!?)}](){[". Nothing where there is none, which is logged: "Could not detect selected word
/// in 'selectedWord'".
std::optional<base::TextRange> selectedWord(std::string_view text, std::size_t location);

}  // namespace tessaly::editor
