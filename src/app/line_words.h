// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "app/line_look.h"
#include "base/day.h"
#include "grammar/date_string_helper.h"

namespace tessaly::app {

/// The lines behind one, one more with each call; nothing: there are no more.
using NextLine = std::function<std::optional<std::string>()>;

/// How many tasks belong to a line, as of `OutlineLine`. No more than some hundred lines are looked
/// at.
std::size_t subTasksBelow(std::string_view line, const NextLine& next,
                          const grammar::MarkerSettings& markers);

/// What is said of a line to who does not see it, in the user's words: "Task, open, Call Bob, due
/// Friday, 8 March, 2 sub-tasks", "Heading 2, Plans". Empty for lines that their text tells of.
std::string lineInWords(std::string_view line, const LineLook& look, std::size_t subTasks,
                        base::Day today, const grammar::DateStringHelper& names);

}  // namespace tessaly::app
