// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <unordered_map>

#include "base/day.h"

namespace tessaly::search {

/// What an instant is called in the user's zone. Any thread.
using LocalTimeOf = std::function<base::LocalTime(base::Instant instant)>;

/// On which days of the user's zone instants lie, for many of them: the system is asked about each
/// day of theirs, not about each instant, which takes it longer than it takes to read a note's
/// title. For one thread and for one piece of work, since the zone may change.
class LocalDays {
public:
    explicit LocalDays(LocalTimeOf localTimeOf) : _localTimeOf(std::move(localTimeOf)) {}

    base::Day operator()(base::Instant instant);

private:
    using Seconds = std::chrono::seconds;
    Seconds offsetAt(base::Instant instant) const;

    const LocalTimeOf _localTimeOf;
    /// Of a day in universal time; nothing where the zone changes its offset within it.
    std::unordered_map<std::chrono::days::rep, std::optional<Seconds>> _offsets;
};

}  // namespace tessaly::search
