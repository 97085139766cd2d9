// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "app/planner.h"
#include "app/start_up.h"

using namespace tessaly;
using tests::Planner;

namespace {

app::UsageLog toldTo(std::string& events) {
    return app::UsageLog([&events](std::string_view event, std::string_view value) {
        events.append(event).append(" ").append(value).append("\n");
    });
}

}  // namespace

TEST_CASE("the first launch is the one without settings and without a data folder") {
    const std::string first = "AppStart Launching\nAppStart First Launch\n";
    const std::string later = "AppStart Launching\n";
    const struct {
        std::string file;
        std::string bytes;
        const std::string& events;
    } rows[] = {
        {"elsewhere", "", first},
        {"config/settings.json", "{}", first},
        {"config/settings.json", R"({"fontSize": 12})", later},
        {"config/settings.json", "damaged", later},
        {"data/org.tessaly.tessaly/Calendar/20190305.txt", "", later},
    };
    for (const auto& row : rows) {
        CAPTURE(row.file);
        CAPTURE(row.bytes);
        Planner planner;
        planner.folder().write(row.file, row.bytes);
        std::string events;
        app::startUp(planner.services(), toldTo(events));
        CHECK(events == row.events);
        CHECK(planner.services().globals().runTime().launchedBefore == (row.events == later));
    }
}
