// SPDX-License-Identifier: MIT
#include "platform/fixed_clock.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include <fmt/format.h>

#include "base/localisation.h"
#include "platform/local_time.h"

namespace tessaly::platform {

using base::Failure;
using std::chrono::minutes;

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Takes what it reads off the front of a text.
class Taker {
public:
    explicit Taker(std::string_view text) : _rest(text) {}

    bool atEnd() const { return _rest.empty(); }

    bool take(std::string_view anyOf) {
        const bool there = !_rest.empty() && anyOf.find(_rest.front()) != std::string_view::npos;
        _rest.remove_prefix(there ? 1 : 0);
        return there;
    }

    std::optional<base::Day> day() {
        const auto day = base::dayFromTagText(_rest.substr(0, 10));
        _rest.remove_prefix(day ? 10 : 0);
        return day;
    }

    /// Two digits that are at most `highest`.
    std::optional<int> twoDigits(int highest) {
        if (_rest.size() < 2 || !isDigit(_rest[0]) || !isDigit(_rest[1])) {
            return std::nullopt;
        }
        const int value = (_rest[0] - '0') * 10 + (_rest[1] - '0');
        _rest.remove_prefix(2);
        return value <= highest ? std::optional{value} : std::nullopt;
    }

    /// False: no digit at all.
    bool digits() {
        const std::size_t before = _rest.size();
        while (!_rest.empty() && isDigit(_rest.front())) {
            _rest.remove_prefix(1);
        }
        return _rest.size() < before;
    }

private:
    std::string_view _rest;
};

/// A time as written, and how far it is east of Greenwich if that is said.
struct Written {
    base::LocalTime time;
    std::optional<minutes> offset;
};

bool readSeconds(Taker& text, base::LocalTime& time) {
    if (!text.take(":")) {
        return true;
    }
    const auto second = text.twoDigits(60);
    time.second = std::min(second.value_or(0), 59);
    return second && (!text.take(".") || text.digits());
}

bool readOffset(Taker& text, std::optional<minutes>& offset) {
    if (text.take("Zz")) {
        offset = minutes{0};
        return true;
    }
    const bool east = text.take("+");
    if (!east && !text.take("-")) {
        return true;
    }
    const auto hour = text.twoDigits(23);
    const bool colon = text.take(":");
    const auto minute = text.twoDigits(59);
    if (!hour || !colon || !minute) {
        return false;
    }
    offset = (east ? 1 : -1) * minutes{*hour * 60 + *minute};
    return true;
}

std::optional<Written> readWritten(Taker text) {
    const auto day = text.day();
    // Instants count nanoseconds in 64 bits, which end in these years.
    if (!day || int{day->year()} < 1678 || int{day->year()} > 2261) {
        return std::nullopt;
    }
    Written written{{*day, 12, 0, 0}, std::nullopt};
    if (text.atEnd()) {
        return written;
    }
    const bool separated = text.take("Tt ");
    const auto hour = text.twoDigits(23);
    const bool colon = text.take(":");
    const auto minute = text.twoDigits(59);
    if (!separated || !hour || !colon || !minute) {
        return std::nullopt;
    }
    written.time.hour = *hour;
    written.time.minute = *minute;
    const bool read = readSeconds(text, written.time) && readOffset(text, written.offset);
    return read && text.atEnd() ? std::optional{written} : std::nullopt;
}

base::Instant instantAt(const base::LocalTime& time, minutes offset) {
    return std::chrono::sys_days{time.day} + std::chrono::hours{time.hour} + minutes{time.minute} +
           std::chrono::seconds{time.second} - offset;
}

}  // namespace

base::Result<GivenTime> parseTime(std::string_view text) {
    const auto written = readWritten(Taker(text));
    if (!written) {
        return Failure{Failure::Kind::malformed,
                       fmt::format("{}: {} 2019-03-05, 2019-03-05T14:07, "
                                   "2019-03-05T14:07:33+01:00",
                                   text, base::tr("no time that exists; a time is written as"))};
    }
    if (!written->offset) {
        return GivenTime{written->time, instantOf(written->time)};
    }
    const base::Instant instant = instantAt(written->time, *written->offset);
    return GivenTime{localTime(instant), instant};
}

base::LocalTime FixedClock::local(base::Instant instant) {
    return instant == _time.instant ? _time.local : localTime(instant);
}

}  // namespace tessaly::platform
