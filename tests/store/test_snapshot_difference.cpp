// SPDX-License-Identifier: MIT
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "store/snapshot_difference.h"
#include "store/sorted_snapshot.h"

using namespace tessaly;

namespace {

struct Item {
    int key;
};
struct ByKey {
    using Key = int;
    static Key keyOf(const Item& item) { return item.key; }
};
using Snapshot = store::SortedSnapshot<Item, ByKey>;
using Difference = std::pair<Snapshot::Pointer, Snapshot::Pointer>;

std::vector<Difference> expectedBetween(const Snapshot& before, const Snapshot& after) {
    std::map<int, Difference> byKey;
    before.forEach([&](const auto& item) { byKey[item->key].first = item; });
    after.forEach([&](const auto& item) { byKey[item->key].second = item; });
    std::vector<Difference> expected;
    for (const auto& [key, difference] : byKey) {
        if (difference.first != difference.second) {
            expected.push_back(difference);
        }
    }
    return expected;
}

Snapshot changed(const Snapshot& snapshot, std::size_t count, int keys, std::mt19937& engine) {
    std::map<int, Snapshot::Pointer> wanted;
    for (std::size_t change = 0; change < count; ++change) {
        const int key = static_cast<int>(engine() % static_cast<unsigned>(keys));
        wanted[key] = engine() % 3 == 0 ? nullptr : std::make_shared<const Item>(Item{key});
    }
    std::vector<Snapshot::Change> changes;
    for (const auto& [key, item] : wanted) {
        changes.push_back({key, item});
    }
    return snapshot.with(changes);
}

}  // namespace

TEST_CASE("the differences of two snapshots are all that differs, in order") {
    std::mt19937 engine(1);
    for (int round = 0; round < 200; ++round) {
        const int keys = round % 2 == 0 ? 30 : 2000;
        const Snapshot before = changed(Snapshot(), engine() % 1500, keys, engine);
        const Snapshot after =
            round % 5 == 0 ? changed(Snapshot(), engine() % 900, keys, engine)
                           : changed(before, engine() % (round % 7 == 0 ? 900 : 5), keys, engine);
        std::vector<Difference> found;
        store::forEachDifference<ByKey>(
            before, after, [&](const auto& old, const auto& now) { found.emplace_back(old, now); });
        CHECK(found == expectedBetween(before, after));
    }
}
