// SPDX-License-Identifier: MIT
#include "editor/editor_commands.h"

#include "editor/inline_command.h"
#include "editor/line_command.h"
#include "editor/mark_records.h"
#include "editor/move_lines.h"
#include "editor/selection_map.h"
#include "grammar/todo_helper.h"

namespace tessaly::editor {

namespace {

/// The record that an action has with these settings: tasks whose marker is a number are numbered.
const MarkRecord& recordWith(const MarkSettings& settings, MarkAction action) {
    const auto prefix =
        grammar::TodoHelper::newTaskPrefix(settings.markers, settings.defaultTodoCharacter);
    const bool isNumbered = action == MarkAction::todo && prefix.front() == '1';
    return recordOf(isNumbered ? MarkAction::numberedTodo : action);
}

}  // namespace

base::Result<std::optional<Edit>> mark(MarkAction action, std::string_view text,
                                       base::TextRange selection, const MarkSettings& settings) {
    const auto selected = selectedBytes(text, selection);
    if (!selected) {
        return selected.failure();
    }
    const MarkRecord& record = recordWith(settings, action);
    switch (record.scope) {
        case MarkRecord::Scope::lines: return applyToLines(record, text, *selected, settings);
        case MarkRecord::Scope::words: return applyInline(record, action, text, selection);
        case MarkRecord::Scope::block: break;
    }
    return moveLines(text, selection,
                     action == MarkAction::moveUp ? Direction::up : Direction::down);
}

}  // namespace tessaly::editor
