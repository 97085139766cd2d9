// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/day.h"

namespace tessaly::search {

/// The day of a task: its first schedule tag's, else its calendar note's; nothing: it has none.
/// `line` may be folded: that changes no tag with a date.
std::optional<base::Day> dayOfTask(std::string_view line, std::optional<base::Day> noteDay);

}  // namespace tessaly::search
