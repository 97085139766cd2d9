// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "platform/fixed_clock.h"
#include "platform/local_time.h"
#include "platform/system_clock.h"
#include "support/environment.h"

namespace tessaly::platform {
namespace {

using tests::Environment;

/// "2019-03-05 14:07:33"
std::string shown(const base::LocalTime& time) {
    const auto twoDigits = [](int value) {
        return (value < 10 ? "0" : "") + std::to_string(value);
    };
    return base::tagText(time.day) + " " + twoDigits(time.hour) + ":" + twoDigits(time.minute) +
           ":" + twoDigits(time.second);
}

base::Instant at(long long seconds) {
    return base::Instant{std::chrono::seconds{seconds}};
}

TEST_CASE("an instant is called what the zone of the moment calls it") {
    struct Row {
        const char* zone;
        long long seconds;
        const char* local;
    };
    SystemClock clock;
    // The zone changes from row to row within one process.
    for (const Row& row : std::initializer_list<Row>{
             {"UTC", 0, "1970-01-01 00:00:00"},
             {"UTC", -1, "1969-12-31 23:59:59"},
             {"America/New_York", 1552201199, "2019-03-10 01:59:59"},
             {"America/New_York", 1552201200, "2019-03-10 03:00:00"},
             {"Europe/Berlin", 1572137999, "2019-10-27 02:59:59"},
             {"Europe/Berlin", 1572138000, "2019-10-27 02:00:00"},
             {"Pacific/Apia", 1325239199, "2011-12-29 23:59:59"},
             {"Pacific/Apia", 1325239200, "2011-12-31 00:00:00"},
             {"America/Sao_Paulo", 1541300400, "2018-11-04 01:00:00"},
             {"", 1551794853, "2019-03-05 14:07:33"},
         }) {
        CAPTURE(row.zone);
        const Environment environment{{"TZ", row.zone}};
        CHECK(shown(clock.local(at(row.seconds))) == row.local);
    }
    const Environment environment{{"TZ", "UTC"}};
    CHECK(shown(clock.local(at(0) - std::chrono::nanoseconds{1})) == "1969-12-31 23:59:59");
}

TEST_CASE("a given time is read in the user's zone or its own") {
    struct Row {
        const char* zone;
        const char* text;
        const char* local;
        long long seconds;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"UTC", "2019-03-05T14:07:33", "2019-03-05 14:07:33", 1551794853},
             {"UTC", "2019-03-05t14:07:33.987z", "2019-03-05 14:07:33", 1551794853},
             {"UTC", "2019-03-05", "2019-03-05 12:00:00", 1551787200},
             {"UTC", "2016-12-31T23:59:60Z", "2016-12-31 23:59:59", 1483228799},
             {"Europe/Berlin", "2019-03-05T14:07:33", "2019-03-05 14:07:33", 1551791253},
             {"Europe/Berlin", "2019-03-05T14:07:33Z", "2019-03-05 15:07:33", 1551794853},
             {"Europe/Berlin", "2019-07-01T00:00-05:30", "2019-07-01 07:30:00", 1561959000},
             {"Pacific/Auckland", "2019-03-05T14:07:33+01:00", "2019-03-06 02:07:33", 1551791253},
             {"UTC", "1678-01-01", "1678-01-01 12:00:00", -9214516800},
             {"UTC", "2261-12-31T23:59:59-23:59", "2262-01-01 23:58:59", 9214732739},
         }) {
        CAPTURE(row.text);
        const Environment environment{{"TZ", row.zone}};
        const auto time = parseTime(row.text);
        REQUIRE(time);
        CHECK(shown(time->local) == row.local);
        CHECK(time->instant == at(row.seconds));
        CHECK(shown(FixedClock(*time).local(time->instant)) == row.local);
    }
}

TEST_CASE("a time that the clock leaves out is still what it is now") {
    const Environment environment{{"TZ", "America/New_York"}};
    const auto time = parseTime("2019-03-10T02:30");
    REQUIRE(time);
    FixedClock clock(*time);
    CHECK(shown(clock.local(clock.now())) == "2019-03-10 02:30:00");
    CHECK(clock.now() > at(1552201200 - 3600));
    CHECK(clock.now() < at(1552201200 + 3600));
    CHECK(shown(clock.local(at(1552201200))) == "2019-03-10 03:00:00");
}

TEST_CASE("what is no time is refused by name") {
    for (const char* text :
         {"", "2019-02-29", "2019-3-5", "20190305", "2019-03-05T", "2019-03-05T24:00",
          "2019-03-05T14:60", "2019-03-05T14:07:61", "2019-03-05T14:07:33.",
          "2019-03-05T14:07:33+1", "2019-03-05T14:07:33+01:60", "2019-03-05T14:07:33+0100",
          "2019-03-05T14:07:33 ", " 2019-03-05", "2019-03-05X14:07", "2019-03-05T1:007",
          "1677-12-31", "2262-01-01", "2019-03-05T14:07Zz"}) {
        CAPTURE(text);
        const auto time = parseTime(text);
        REQUIRE(!time);
        CHECK(time.failure().kind == base::Failure::Kind::malformed);
        CHECK(time.failure().description.starts_with(std::string(text) + ": "));
    }
}

}  // namespace
}  // namespace tessaly::platform
