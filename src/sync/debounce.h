// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>

namespace tessaly::sync {

/// When a burst of requests is over. Knows no clock: all times are since some common start.
class Debounce {
public:
    using Time = std::chrono::nanoseconds;

    /// Fires when `quiet` has passed since the last request, but never later than `longest` after
    /// the first of them.
    Debounce(Time quiet, Time longest) : _quiet(quiet), _longest(longest) {}

    void request(Time now);

    /// When it fires, if nothing is requested before; nothing: nothing has been requested.
    std::optional<Time> due() const;

    /// Whether it is due; if so, the requests up to now are answered.
    bool fire(Time now);

private:
    const Time _quiet;
    const Time _longest;
    std::optional<Time> _first;
    Time _last{};
};

}  // namespace tessaly::sync
