// SPDX-License-Identifier: MIT
#pragma once

#include "editor/mark_action.h"
#include "grammar/line_action.h"

namespace tessaly::editor {

/// How a command is carried out.
struct MarkRecord {
    /// What it works on: each selected line, the selected words within their line, or the selected
    /// lines as a block that moves.
    enum class Scope { lines, words, block };

    MarkAction action;
    Scope scope;
    /// Empty for the commands on a block and for those that have a `state`. Those on words find
    /// their applied pattern anywhere among them. In the templates of numbered items `numberSign`
    /// stands for the item's number; tasks and bullets have the asterisk, which may become a dash.
    grammar::LineAction rules;
    const grammar::StateAction* state = nullptr;  ///< of the commands that change a task's state
};

inline constexpr char numberSign = 'n';

const MarkRecord& recordOf(MarkAction action);

}  // namespace tessaly::editor
