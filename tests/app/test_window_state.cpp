// SPDX-License-Identifier: MIT
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "app/window_state.h"
#include "platform/json_user_defaults.h"
#include "settings/memory_defaults.h"
#include "support/temp_folder.h"

using namespace tessaly;
using app::Place;
using app::WindowState;
using tests::MemoryDefaults;
using namespace std::chrono_literals;

namespace {

constexpr base::Day someDay = 2019y / 3 / 5;

WindowState leftBehind() {
    WindowState state;
    state.geometry = "AdnQywADAAA=";
    state.isSideBarShown = false;
    state.isListShown = true;
    state.isRightPaneShown = false;
    state.sideBarWidth = 201;
    state.listWidth = 302;
    state.rightPaneWidth = 403;
    state.place = Place::ofNote("Work/Büro.txt");
    state.wasAtDay = false;
    state.list = {"#tag in:Work", "Urgent", "What is urgent"};
    state.recentSearches = {"newest", "older \"words\""};
    return state;
}

struct DamagedRow {
    std::string_view key;
    ports::DefaultsValue value;
    bool isPlaceLost;
};

const DamagedRow damagedRows[] = {
    {"sideBarWidth", std::int64_t{-3}, false},
    {"sideBarWidth", std::int64_t{1} << 40, false},
    {"sideBarWidth", std::string{"wide"}, false},
    {"place", std::string{"month"}, true},
    {"place", std::int64_t{1}, true},
    {"place", std::string{"day"}, true},  // a file name is no day
    {"placeDetail", std::string{}, true},
};

void check(const DamagedRow& row) {
    CAPTURE(row.key);
    MemoryDefaults defaults;
    REQUIRE(app::keepWindowState(defaults, leftBehind()));
    defaults.values.insert_or_assign(std::string{row.key}, row.value);
    WindowState expected = leftBehind();
    if (row.isPlaceLost) {
        expected.place = {};
        expected.wasAtDay = true;
    } else {
        expected.sideBarWidth = WindowState{}.sideBarWidth;
    }
    CHECK(app::readWindowState(defaults) == expected);
}

}  // namespace

TEST_CASE("a window comes back as it was left") {
    const tests::TempFolder folder;
    const std::string file = folder / "state/window.json";
    for (const Place& place :
         {Place::ofNote("Work/Büro.txt"), Place::ofDay(someDay), Place::ofWeek(someDay)}) {
        WindowState state = leftBehind();
        state.place = place;
        platform::JsonUserDefaults defaults{file};
        REQUIRE(app::keepWindowState(defaults, state));
        platform::JsonUserDefaults readAgain{file};
        CHECK(app::readWindowState(readAgain) == state);
    }
}

TEST_CASE("what makes no sense has its default, and the rest stays") {
    for (const DamagedRow& row : damagedRows) {
        check(row);
    }
}

TEST_CASE("a window that was left as before is not stored again") {
    MemoryDefaults defaults;
    WindowState state = leftBehind();
    state.recentSearches.assign(25, "again");
    REQUIRE(app::keepWindowState(defaults, state));
    CHECK(app::readWindowState(defaults).recentSearches.size() == 20);
    defaults.refusal = base::Failure{base::Failure::Kind::noSpace, "disk full"};
    CHECK(app::keepWindowState(defaults, state));
    state.listWidth += 1;
    CHECK_FALSE(app::keepWindowState(defaults, state));
}
