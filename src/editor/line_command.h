// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/failure.h"
#include "editor/edit.h"
#include "editor/editor_commands.h"
#include "editor/mark_records.h"
#include "editor/selected_lines.h"

namespace tessaly::editor {

/// A command on lines, done to each line that the selection touches. `selection` begins and ends at
/// characters of the text.
///
/// - Each line is taken by itself: of a mixed selection, those that have the mark lose it.
/// - Blank lines stay as they are, unless there are no others.
/// - A carriage return at a line's end is no part of the line.
/// - What is selected moves with its words; a cursor at a line's start, with the line's text.
///
/// Nothing: no line is changed. Failure `tooLarge`: a line begins with more than 20 KB of white
/// space, digits or "#", and the command is none on a task's state.
base::Result<std::optional<Edit>> applyToLines(const MarkRecord& record, std::string_view text,
                                               ByteSpan selection, const MarkSettings& settings);

}  // namespace tessaly::editor
