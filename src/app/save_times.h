// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace tessaly::app {

/// When what is typed is to be saved: at a pause, but often enough while there is none; and never
/// so often that the disk has nothing else to do.
class SaveTimes {
public:
    using Time = std::chrono::nanoseconds;

    struct Rules {
        Time pause;           ///< without typing, that saves
        Time longestUnsaved;  ///< and the least time between two saves
        Time retryInterval;   ///< after one that failed
    };

    explicit SaveTimes(const Rules& rules) : _rules(rules) {}

    void edited(Time now) {
        _firstUnsaved = _firstUnsaved.value_or(now);
        _lastEdit = now;
    }
    /// A save begins: what is typed from now on is for the next one.
    void started(Time now) {
        _lastStart = now;
        _firstUnsaved.reset();
    }
    void failed(Time now) { _retry = now + _rules.retryInterval; }
    void succeeded() { _retry.reset(); }

    /// When to save, for who has something to save. Not after `longestUnsaved` from the first edit
    /// since the last save began, unless that failed.
    Time due() const {
        if (_retry) {
            return *_retry;
        }
        if (!_firstUnsaved) {
            return Time::zero();
        }
        const Time wanted =
            std::min(_lastEdit + _rules.pause, *_firstUnsaved + _rules.longestUnsaved);
        return _lastStart ? std::max(wanted, *_lastStart + _rules.longestUnsaved) : wanted;
    }

private:
    const Rules _rules;
    std::optional<Time> _firstUnsaved;
    Time _lastEdit = Time::zero();
    std::optional<Time> _lastStart;
    std::optional<Time> _retry;
};

}  // namespace tessaly::app
