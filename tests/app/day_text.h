// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/day_view.h"

namespace tessaly::tests {

/// Days as a test reads them: a line a day, with "+" when it has a note, then its own tasks ("="),
/// those scheduled for it (">") and those overdue ("!").
std::string dayText(const app::DayViews& views);

}  // namespace tessaly::tests
