// SPDX-License-Identifier: MIT
#include <string>

#include <doctest/doctest.h>

#include "app/place.h"

using namespace tessaly;
using app::Navigation;
using app::Place;

namespace {

/// The places from the first on, the current one in brackets.
std::string trail(Navigation navigation) {
    const Place current = navigation.current();
    std::size_t steps = 0;
    for (; navigation.canGoBack(); navigation.back()) {
        ++steps;
    }
    std::string text;
    for (std::size_t at = 0;; ++at, navigation.forward()) {
        const std::string name =
            navigation.current().kind == Place::Kind::note ? navigation.current().filename : "day";
        text += (text.empty() ? "" : " ") + (at == steps ? "[" + name + "]" : name);
        if (!navigation.canGoForward()) {
            return text;
        }
    }
}

/// "a" goes to that note, "<" back, ">" forward, "a=b" renames, "a=" forgets.
Navigation walked(const std::string& steps) {
    Navigation navigation{Place::ofDay(base::Day{std::chrono::year{2019} / 3 / 5})};
    std::size_t at = 0;
    while (at < steps.size()) {
        const std::size_t end = std::min(steps.find(' ', at), steps.size());
        const std::string step = steps.substr(at, end - at);
        at = end + 1;
        const std::size_t sign = step.find('=');
        if (step == "<") {
            navigation.back();
        } else if (step == ">") {
            navigation.forward();
        } else if (sign != step.npos) {
            navigation.renamed(step.substr(0, sign), step.substr(sign + 1));
        } else {
            navigation.go(Place::ofNote(step));
        }
    }
    return navigation;
}

struct TrailRow {
    std::string steps;
    std::string trail;
};

const TrailRow trailRows[] = {
    {"a b", "day a [b]"},
    {"a a b", "day a [b]"},
    {"a b <", "day [a] b"},
    {"a b < < < >", "day [a] b"},
    {"a b < c", "day a [c]"},
    {"a b < a", "day [a] b"},
    {"W/a W/b Wa W=V", "day V/a V/b [Wa]"},
    {"a b a b=", "day [a]"},  // no step that leads to where one is
    {"a b a= <", "[day] b"},
    {"a b < a=", "[day] b"},
    {"W/a b W/c W=", "day [b]"},
    {"a b b=a <", "[day] a"},
};

}  // namespace

TEST_CASE("one goes back and forward through what was seen, by the names that notes have now") {
    for (const TrailRow& row : trailRows) {
        CAPTURE(row.steps);
        CHECK(trail(walked(row.steps)) == row.trail);
    }
}

TEST_CASE("a trail that grows too long forgets its beginning, and never all of it") {
    std::string steps;
    for (std::size_t i = 0; i < 2 * Navigation::mostPlaces; ++i) {
        steps += std::to_string(i) + " ";
    }
    Navigation navigation = walked(steps);
    std::size_t back = 0;
    for (; navigation.canGoBack(); navigation.back()) {
        ++back;
    }
    CHECK(back + 1 == Navigation::mostPlaces);
    CHECK(navigation.current().filename == std::to_string(Navigation::mostPlaces));

    Navigation alone{Place::ofNote("a")};
    alone.renamed("a", "");
    CHECK(alone.current().filename == "a");
}
