// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "grammar/line_scanner.h"
#include "grammar/note_title.h"
#include "grammar/todo.h"

namespace tessaly::grammar {

/// Turns note text into records. A function of its arguments: any thread, no failure.
class TodoHelper {
public:
    /// One record a line, in line order; an empty text has none.
    static std::vector<Todo> parseNoteContent(const NoteText& note, const MarkerSettings& settings);

    /// One line alone, with `lineIndex` 0 and `isFirstLine` false. `line` holds no "\n".
    static Todo parseLine(std::string_view line, const MarkerSettings& settings);

    /// The record of a line that a scan of the note's text has met; title, ranges and parent are
    /// left empty. `noteDay` is the day of a calendar note.
    static Todo todoOf(const ScannedLine& line, std::optional<base::Day> noteDay);

    /// The day of the line's first date tag of this kind. The first decides: nothing also when it
    /// names no real day.
    static std::optional<base::Day> firstDay(const ScannedLine& line, MarkKind kind);

    /// What the editor writes to start a task; `number` is the item number where the marker is one.
    static std::string newTaskPrefix(const MarkerSettings& settings,
                                     base::TodoCharacter defaultTodoCharacter, int number = 1);
};

/// `content` cut for display to `characters` user-perceived characters, with "..." when it was cut.
std::string shortened(std::string_view content, int characters);

}  // namespace tessaly::grammar
