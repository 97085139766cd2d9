// SPDX-License-Identifier: MIT
#include <vector>

#include <doctest/doctest.h>

#include "sync/debounce.h"

namespace tessaly::sync {
namespace {

using namespace std::chrono_literals;
using Times = std::vector<Debounce::Time>;

Times from(Debounce::Time first, Debounce::Time last, Debounce::Time step) {
    Times times;
    for (auto time = first; time <= last; time += step) {
        times.push_back(time);
    }
    return times;
}

/// When it fires, asked every 50 ms.
void check(const Times& requests, const Times& fired) {
    Debounce debounce(1s, 5s);
    Times found;
    auto next = requests.begin();
    for (Debounce::Time now = 0s; now < 20s; now += 50ms) {
        for (; next != requests.end() && *next <= now; ++next) {
            debounce.request(now);
        }
        const auto due = debounce.due();
        const bool isDue = debounce.fire(now);
        CHECK(isDue == (due && *due <= now));
        if (isDue) {
            found.push_back(now);
        }
    }
    CHECK(found == fired);
}

}  // namespace

TEST_CASE("a burst of requests is answered once it is over, but not later than the longest delay") {
    check({}, {});
    check({0s}, {1s});
    check({0s, 100ms, 200ms, 300ms, 400ms, 500ms, 600ms, 700ms, 800ms, 900ms}, {1900ms});
    check({0s, 950ms, 1900ms}, {2900ms});
    check({0s, 2s}, {1s, 3s});
    check(from(0s, 11s, 500ms), {5s, 10s + 500ms, 12s});
    check({0s, 1s}, {2s});
}

}  // namespace tessaly::sync
