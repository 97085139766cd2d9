// SPDX-License-Identifier: MIT
#include "sync/rescan_plan.h"

#include <algorithm>

namespace tessaly::sync {

RescanPlan::Time RescanPlan::Pace::interval() const {
    return std::max(shortest, lastTook * share);
}

bool RescanPlan::Pace::isDue(Time now) const {
    return now - lastEnded >= interval();
}

void RescanPlan::Pace::looked(Time began, Time ended) {
    lastEnded = ended;
    lastTook = ended - began;
}

bool RescanPlan::isPollDue(Time now) const {
    return _poll.isDue(now);
}

void RescanPlan::polled(Time began, Time ended) {
    _poll.looked(began, ended);
}

RescanPlan::Time RescanPlan::pollInterval() const {
    return std::max<Time>(_poll.interval(), std::chrono::seconds(5));
}

bool RescanPlan::isRescanDue(Time now) const {
    return _rescan.isDue(now);
}

void RescanPlan::rescanned(Time began, Time ended) {
    _rescan.looked(began, ended);
    _poll.looked(began, ended);
}

}  // namespace tessaly::sync
