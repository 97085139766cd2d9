// SPDX-License-Identifier: MIT
#include <filesystem>

#include <doctest/doctest.h>

#include "live/live_folder.h"
#include "live/outsider.h"
#include "support/log_capture.h"
#include "support/sanitized.h"

namespace tessaly::tests {
namespace {

constexpr int rounds = isSanitized ? 10 : 60;
constexpr int editsInRound = 40;

/// Rounds of changes by somebody else, some while earlier ones are worked on; at the end of each,
/// when `settle` says that all is quiet, memory must hold what the disk holds.
template <class Settle>
void check(LiveFolder& live, std::uint32_t seed, const Settle& settle) {
    const LogCapture log;
    Outsider outsider(live.folder(), seed);
    for (int edit = 0; edit < editsInRound; ++edit) {
        outsider.edit();
    }
    REQUIRE(live.start());
    for (int round = 0; round < rounds; ++round) {
        for (int edit = 0; edit < editsInRound; ++edit) {
            if (edit % 8 == 0) {
                live.begin();
            }
            outsider.edit();
        }
        const std::string story = outsider.story();
        CAPTURE(seed);
        CAPTURE(round);
        CAPTURE(story);
        REQUIRE(settle());
        REQUIRE(live.differenceFromDisk() == "");
    }
}

}  // namespace

TEST_CASE("memory follows whatever others do with the files") {
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
        LiveFolder live;
        check(live, seed, [&] { return live.settle(); });
    }
}

TEST_CASE("looking now and then mends what lost events have left") {
    for (const std::uint32_t seed : {4U, 5U}) {
        LiveFolder live;
        check(live, seed, [&] {
            live.query().lose(100);
            const bool isSettled = live.settleByLooking();
            live.query().lose(40);
            return isSettled;
        });
    }
}

TEST_CASE("folders that cannot be watched are looked at") {
    for (const std::size_t watches : {1U, 4U}) {
        LiveFolder live({.maxWatches = watches});
        check(live, 6, [&] { return live.settleByLooking(); });
    }
}

TEST_CASE("what goes between the load and the first look is not kept") {
    const LogCapture log;
    LiveFolder live;
    live.folder().write("data/Notes/gone.txt", "* [ ] task #tag");
    REQUIRE(live.load());
    std::filesystem::remove(live.folder() / "data/Notes/gone.txt");
    REQUIRE(live.watch());
    REQUIRE(live.settle());
    CHECK(live.differenceFromDisk() == "");
}

TEST_CASE("a change through another name of the file makes no event, and is found") {
    const LogCapture log;
    LiveFolder live;
    live.folder().write("data/Notes/twice.txt", "old");
    std::filesystem::create_hard_link(live.folder() / "data/Notes/twice.txt",
                                      live.folder() / "outside/twice.txt");
    REQUIRE(live.start());
    live.folder().write("outside/twice.txt", "new");
    live.query().lose(100);
    REQUIRE(live.settleByLooking());
    CHECK(live.differenceFromDisk() == "");
}

}  // namespace tessaly::tests
