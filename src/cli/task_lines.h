// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "cli/context.h"
#include "cli/spans.h"
#include "store/day_tasks.h"

namespace tessaly::cli {

/// Where a task stands, as every verb takes it: "Calendar/20191231.txt:3", lines from 1.
std::string addressOf(const store::NoteTask& task);

/// As `addressOf`, but shorter for the eye where that is safe.
std::string shortAddressOf(const Context& context, const store::NoteTask& task);

/// The sign of a state: "○" in a UTF-8 terminal, else its box.
Span signOf(grammar::TodoType type, const Terminal& terminal);

/// The content of a task with its tags told apart; safe to show.
Spans contentOf(const grammar::Todo& todo);

/// Prints a line for each task: in a terminal indented, with the address at the right; elsewhere
/// "ADDRESS  [ ] content".
void printTasks(Context& context, const std::vector<store::NoteTask>& tasks);

/// The same as the whole of a verb's output, or as JSON when that is wanted.
void printTaskList(Context& context, const std::vector<store::NoteTask>& tasks);

}  // namespace tessaly::cli
