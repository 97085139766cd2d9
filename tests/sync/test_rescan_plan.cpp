// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "sync/rescan_plan.h"

namespace tessaly::sync {
namespace {

using namespace std::chrono_literals;
using Time = RescanPlan::Time;

constexpr Time ended = 1h;

struct Row {
    Time took;
    Time pollAfter;  ///< the end of that look
    Time rescanAfter;
};

void check(const Row& row) {
    RescanPlan plan;
    plan.rescanned(ended - row.took, ended);
    CHECK_FALSE(plan.isPollDue(ended + row.pollAfter - 1ns));
    CHECK(plan.isPollDue(ended + row.pollAfter));
    CHECK_FALSE(plan.isRescanDue(ended + row.rescanAfter - 1ns));
    CHECK(plan.isRescanDue(ended + row.rescanAfter));
}

}  // namespace

TEST_CASE("the longer a look takes, the longer is the pause behind it") {
    check({0ms, 4s, 60s});
    check({1ms, 4s, 60s});
    check({100ms, 5s, 100s});
    check({2s, 100s, 2000s});
}

TEST_CASE("polling puts no rescan off") {
    RescanPlan plan;
    plan.rescanned(ended, ended);
    plan.polled(ended + 59s, ended + 60s);
    CHECK(plan.isRescanDue(ended + 60s));
    CHECK_FALSE(plan.isPollDue(ended + 109s));
    CHECK(plan.pollInterval() == 50s);
}

}  // namespace tessaly::sync
