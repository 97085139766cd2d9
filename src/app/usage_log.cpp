// SPDX-License-Identifier: MIT
#include "app/usage_log.h"

namespace tessaly::app {
namespace {

struct EventRow {
    UsageEvent event;
    std::string_view name;
    std::string_view value;
};

constexpr EventRow eventRows[] = {
    {UsageEvent::launching, "AppStart", "Launching"},
    {UsageEvent::firstLaunch, "AppStart", "First Launch"},
    {UsageEvent::active, "AppStart", "Active"},
    {UsageEvent::inactive, "AppStart", "Inactive"},
    {UsageEvent::exit, "AppExit", ""},
};

}  // namespace

void UsageLog::record(UsageEvent event) const {
    if (!_sink) {
        return;
    }
    for (const EventRow& row : eventRows) {
        if (row.event == event) {
            _sink(row.name, row.value);
        }
    }
}

}  // namespace tessaly::app
