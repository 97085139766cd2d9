// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <optional>
#include <string>

#include "base/day.h"

namespace tessaly::search {

/// Days from the first to the last, both included; a bound that is missing is open.
struct DayRange {
    std::optional<base::Day> first;
    std::optional<base::Day> last;

    bool isOpen() const { return !first && !last; }
    bool holds(base::Day day) const { return (!first || *first <= day) && (!last || day <= *last); }
    /// The days of both.
    DayRange with(const DayRange& other) const {
        DayRange both = *this;
        if (other.first && (!both.first || *both.first < *other.first)) {
            both.first = other.first;
        }
        if (other.last && (!both.last || *other.last < *both.last)) {
            both.last = other.last;
        }
        return both;
    }

    bool operator==(const DayRange&) const = default;
};

/// In words for the user; empty for an open range.
std::string explainDays(const DayRange& days);

}  // namespace tessaly::search
