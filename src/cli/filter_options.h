// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "base/day.h"
#include "base/failure.h"
#include "cli/command_line.h"
#include "search/filter_item.h"

namespace tessaly::cli {

/// What the options of `filter save` are, by blanks.
inline constexpr std::string_view filterStates = "open done scheduled cancelled none";
inline constexpr std::string_view filterKinds = "notes calendar events reminders";
inline constexpr std::string_view filterTimeframes =
    "last-week this-week next-week last-month this-month next-month past future all";

/// The filter that the options of `filter save` describe, its parameters in their fixed order. Days
/// without a timeframe make it a custom one. Failure: misuse, in words for the user; a filter of
/// nothing is that, too.
base::Result<search::Filter> filterFromOptions(
    const Invocation& invocation,
    const std::function<std::optional<base::Day>(std::string_view)>& parseDay);

}  // namespace tessaly::cli
