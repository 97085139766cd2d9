// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace tessaly::sync {

/// How often everything is looked at although no event calls for it: folders that report nothing
/// soon, the others seldom, as a safety net. Looking costs more the more files there are, so the
/// pause grows with what the last look took, and the share of time that it takes stays small. Knows
/// no clock: all times are since some common start.
class RescanPlan {
public:
    using Time = std::chrono::nanoseconds;

    /// Of the folders that report nothing: at each refresh, which is 5 s after the last one or a
    /// little less, and at most 2 % of the time.
    bool isPollDue(Time now) const;
    void polled(Time began, Time ended);
    /// The pause between two looks, for telling the user.
    Time pollInterval() const;

    /// Of all: at least 60 s apart, at most 0.1 % of the time.
    bool isRescanDue(Time now) const;
    /// Counts as a look at the folders that report nothing, too.
    void rescanned(Time began, Time ended);

private:
    struct Pace {
        Time shortest;
        int share;  ///< the pause is at least so many times the last look
        Time lastEnded{};
        Time lastTook{};

        Time interval() const;
        bool isDue(Time now) const;
        void looked(Time began, Time ended);
    };
    Pace _poll{std::chrono::seconds(4), 50};
    Pace _rescan{std::chrono::seconds(60), 1000};
};

}  // namespace tessaly::sync
