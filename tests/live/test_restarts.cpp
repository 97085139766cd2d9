// SPDX-License-Identifier: MIT
#include <chrono>
#include <random>
#include <thread>

#include <doctest/doctest.h>

#include "base/inline_executor.h"
#include "live/cache_text.h"
#include "live/coarse_files.h"
#include "live/kept_indexes.h"
#include "live/live_folder.h"
#include "live/outsider.h"
#include "support/log_capture.h"
#include "support/sanitized.h"

namespace tessaly::tests {
namespace {

constexpr int rounds = isSanitized ? 12 : 40;
constexpr std::size_t mostEdits = 12;

/// Chance, the same for the same seed.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : _random(seed) {}
    std::size_t below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(_random);
    }
    /// In so many of a hundred cases.
    bool happens(std::size_t percent) { return below(100) < percent; }

private:
    std::mt19937 _random;
};

std::shared_ptr<const store::NoteIndex> anyIndex(KeptIndexes& indexes, Dice& dice) {
    if (dice.happens(10)) {
        indexes.damage(dice.below(1000));
    }
    return indexes.open(dice.happens(70) ? 0 : dice.below(4));
}

void editUnwatched(Outsider& outsider, std::size_t edits) {
    for (; edits > 0; --edits) {
        outsider.editUnwatched();
    }
}

}  // namespace

TEST_CASE("a start with an index ends in what a start without it does") {
    // A kernel that does not keep the dates finely advances them every ten milliseconds at most.
    constexpr std::chrono::milliseconds tick{10};
    for (const std::uint32_t seed : {1U, 2U}) {
        const LogCapture log;
        LiveFolder live;
        KeptIndexes indexes(live.folder(), live.store(), 2 * tick);
        Outsider outsider(live.folder(), seed);
        Dice dice(seed);
        int helped = 0;
        editUnwatched(outsider, 100);
        for (int round = 0; round < rounds; ++round) {
            CAPTURE(seed);
            CAPTURE(round);
            live.restart(anyIndex(indexes, dice));
            REQUIRE(live.load());
            helped += live.cache().loadReport()->fromIndex > 0 ? 1 : 0;
            const std::string unwatched = outsider.story();
            CAPTURE(unwatched);
            REQUIRE(live.cacheDifferenceFromDisk() == "");
            REQUIRE(live.watch());
            std::thread writing;
            if (dice.happens(30)) {
                writing = std::thread([&] { indexes.write(live.executor()); });
            }
            for (std::size_t edits = dice.below(mostEdits); edits > 0; --edits) {
                outsider.edit();
            }
            live.begin();
            if (writing.joinable()) {
                writing.join();
            }
            const std::string story = outsider.story();
            CAPTURE(story);
            REQUIRE(live.settle());
            REQUIRE(live.differenceFromDisk() == "");
            if (dice.happens(70)) {
                std::this_thread::sleep_for(2 * tick);
                indexes.write(live.executor());
            }
            live.restart(nullptr);
            editUnwatched(outsider, dice.below(mostEdits));
        }
        CHECK(helped * 2 > rounds);
    }
}

TEST_CASE("an index does not answer for what changed while the file system's clock stood still") {
    constexpr std::chrono::milliseconds tick{50};
    for (const std::uint32_t seed : {1U, 2U}) {
        const LogCapture log;
        StoreFixture fixture;
        CoarseFiles coarse(tick);
        store::DataStore store(
            {coarse, fixture.changes, fixture.safeFiles,
             [](const std::string& file) { return StoreFixture::noTrash(file); }, fixture.clock,
             fixture.executor},
            {.folders = {.data = fixture.folder / "share", .config = {}, .state = {}, .cache = {}},
             .bundleIdentifier = "org.example",
             .dropboxAuthorised = {},
             .cloudContainer = [] { return std::nullopt; },
             .dataFolder = fixture.root});
        fixture.folder.mkdir("outside");
        KeptIndexes indexes(fixture.folder, store, tick + std::chrono::milliseconds(20));
        Outsider outsider(fixture.folder, seed);
        Dice dice(seed);
        const auto tools = [&](std::shared_ptr<const store::NoteIndex> index) {
            return store::NoteCache::Tools{.store = store,
                                           .executor = fixture.executor,
                                           .clock = fixture.clock,
                                           .countSettings = [] { return store::CountSettings{}; },
                                           .onRepeat = {},
                                           .index = [index = std::move(index)] { return index; }};
        };
        int helped = 0;
        editUnwatched(outsider, 100);
        for (int round = 0; round < 2 * rounds; ++round) {
            if (dice.happens(20)) {
                std::this_thread::sleep_for(2 * tick);
            }
            indexes.write(fixture.executor);
            editUnwatched(outsider, dice.below(mostEdits));
            const std::string story = outsider.story();
            CAPTURE(seed);
            CAPTURE(round);
            CAPTURE(story);
            store::NoteCache indexed(tools(indexes.open(dice.below(2))));
            indexed.load();
            store::NoteCache fresh(tools(nullptr));
            fresh.load();
            helped += indexed.loadReport()->fromIndex > 0 ? 1 : 0;
            REQUIRE(difference(everythingIn(indexed), everythingIn(fresh)) == "");
        }
        CHECK(helped > rounds);
    }
}

}  // namespace tessaly::tests
