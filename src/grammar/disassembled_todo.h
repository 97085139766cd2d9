// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/text_range.h"
#include "grammar/todo.h"

namespace tessaly::grammar {

/// A task line taken apart for editing. Here `>` is a marker too. Ranges are UTF-16 units of the
/// line.
struct DisassembledTodo {
    std::string pattern;  ///< leading white space and marker with its blank, `\t* `
    base::TextRange patternRange;
    std::string state;  ///< the box with its blank, `[x] `; empty when the line has none
    base::TextRange stateRange;
    TodoState todoState = TodoState::open;
    std::string rest;  ///< what follows, up to a line terminator
    base::TextRange restRange;
};

/// Takes one line apart; `line` holds no "\n". Any line has a (maybe empty) answer.
DisassembledTodo disassemble(std::string_view line);

/// Where the content of a line starts, in UTF-16 units: behind white space, marker and box.
std::size_t contentLocation(std::string_view line);

/// The text of a line without any Markdown prefix (marker, quote sign, heading, box). A line
/// without a prefix is returned whole.
std::string withoutPrefix(std::string_view line);

}  // namespace tessaly::grammar
