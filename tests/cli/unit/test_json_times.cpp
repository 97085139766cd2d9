// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "cli/json_times.h"

using namespace tessaly;
using namespace std::chrono_literals;

namespace {

using std::chrono::sys_days;

/// A zone that is one hour east, and two from 31 March 2019, 1:00 UTC, to 27 October, 1:00 UTC.
class SummerClock : public ports::Clock {
public:
    base::Instant now() override { return {}; }

    base::LocalTime local(base::Instant instant) override {
        const auto start = sys_days{base::Day{std::chrono::year{2019} / 3 / 31}} + 1h;
        const auto end = sys_days{base::Day{std::chrono::year{2019} / 10 / 27}} + 1h;
        const auto seconds = std::chrono::floor<std::chrono::seconds>(instant);
        const auto wall = seconds + (instant >= start && instant < end ? 2h : 1h);
        const auto day = std::chrono::floor<std::chrono::days>(wall);
        const std::chrono::hh_mm_ss time{wall - day};
        return {base::Day{day}, static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count())};
    }
};

}  // namespace

TEST_CASE("a time on the wall has the offset of its moment") {
    SummerClock clock;
    const auto check = [&clock](unsigned month, unsigned day, int hour, std::string_view expected) {
        const base::Day date{std::chrono::year{2019}, std::chrono::month{month},
                             std::chrono::day{day}};
        CHECK(cli::rfc3339({date, hour, 30, 5}, clock) == expected);
    };
    check(1, 1, 0, "2019-01-01T00:30:05+01:00");
    check(7, 1, 12, "2019-07-01T12:30:05+02:00");
    check(3, 31, 1, "2019-03-31T01:30:05+01:00");   // the last hour before the change
    check(3, 31, 3, "2019-03-31T03:30:05+02:00");   // the first behind it
    check(10, 27, 1, "2019-10-27T01:30:05+02:00");  // still summer
    check(10, 27, 3, "2019-10-27T03:30:05+01:00");
}

TEST_CASE("a time that no clock knows is written without asking one") {
    SummerClock clock;
    const base::Day last{std::chrono::year{9999} / 1 / 1};
    CHECK(cli::rfc3339({last, 10, 0, 0}, clock) == "9999-01-01T10:00:00Z");
    CHECK(cli::rfc3339({base::Day{std::chrono::year{0} / 1 / 1}, 10, 0, 0}, clock) ==
          "0000-01-01T10:00:00Z");
}

TEST_CASE("an instant is written in UTC, before 1970 too") {
    const auto check = [](std::chrono::nanoseconds since, std::string_view expected) {
        CHECK(cli::rfc3339(base::Instant{since}) == expected);
    };
    check(0ns, "1970-01-01T00:00:00Z");
    check(1577800800s + 999999999ns, "2019-12-31T14:00:00Z");
    check(-1ns, "1969-12-31T23:59:59Z");
}
