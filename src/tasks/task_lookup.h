// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "grammar/todo.h"
#include "tasks/task_outcome.h"

namespace tessaly::tasks {

/// Whether a line is, has as its content, or has as its content cut for display, `text`, of which
/// a "\r" at the end does not count. A text that ends in three dots tells the beginning alone.
bool isLineCalled(std::string_view line, std::string_view text,
                  const grammar::MarkerSettings& markers);

/// The index of the line that is meant: the one at its index if it reads so, else, unless it must
/// be there, the note's only one that does. Failure, in words for the user: `notFound`, there is no
/// such line; `changed`, it reads differently, and where it stands now if that is known.
base::Result<std::size_t> findLine(const std::vector<std::string>& lines, const TaskReference& task,
                                   const grammar::MarkerSettings& markers);

}  // namespace tessaly::tasks
