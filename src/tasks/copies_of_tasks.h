// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "grammar/todo.h"

namespace tessaly::tasks {

/// What became of the copy of a scheduled task in the note of its day.
struct CopiesOfTask {
    std::vector<std::size_t> open;  ///< lines that are its copy, and open still
    /// The first line that was its copy, as it seems: it is no longer open, or reads differently.
    std::optional<std::size_t> changed;
};

/// Looks through the lines of a day's note for `copy`, a line as scheduling writes it there, with a
/// link to `sourceDay` if there is one.
CopiesOfTask findCopies(const std::vector<std::string>& lines, std::string_view copy,
                        std::optional<base::Day> sourceDay, const grammar::MarkerSettings& markers);

/// A task's content without dates, which change with its state: the same for a task and its copy.
std::string bareContent(std::string_view content);

/// The day that a task was scheduled to, by the line's first schedule tag.
std::optional<base::Day> scheduledDay(std::string_view line);

}  // namespace tessaly::tasks
