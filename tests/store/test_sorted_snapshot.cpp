// SPDX-License-Identifier: MIT
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "store/sorted_snapshot.h"

using namespace tessaly;

namespace {

struct Item {
    int key;
    int value;
};
struct ByKey {
    using Key = int;
    static Key keyOf(const Item& item) { return item.key; }
};
using Snapshot = store::SortedSnapshot<Item, ByKey>;
using Model = std::map<int, int>;

Model contentOf(const Snapshot& snapshot) {
    Model content;
    std::optional<int> last;
    bool isInOrder = true;
    snapshot.forEach([&](const Snapshot::Pointer& item) {
        isInOrder = isInOrder && (!last || *last < item->key);
        last = item->key;
        content[item->key] = item->value;
    });
    CHECK(isInOrder);
    CHECK(snapshot.size() == content.size());
    return content;
}

Snapshot made(const Model& model) {
    std::vector<Snapshot::Pointer> items;
    for (const auto& [key, value] : model) {
        items.push_back(std::make_shared<const Item>(Item{key, value}));
    }
    return Snapshot(std::move(items));
}

std::vector<Snapshot::Change> changesOf(const std::map<int, std::optional<int>>& wanted) {
    std::vector<Snapshot::Change> changes;
    for (const auto& [key, value] : wanted) {
        changes.push_back({key, value ? std::make_shared<const Item>(Item{key, *value}) : nullptr});
    }
    return changes;
}

void checkLookUps(const Snapshot& snapshot, const Model& model, int keys, std::mt19937& engine) {
    for (int look = 0; look < 20; ++look) {
        const int key = static_cast<int>(engine() % static_cast<unsigned>(keys + 2)) - 1;
        const auto found = snapshot.find(key);
        const auto known = model.find(key);
        CHECK((found == nullptr) == (known == model.end()));
        CHECK((!found || found->value == known->second));
        std::vector<int> from;
        snapshot.forEachFrom(key, [&](const Snapshot::Pointer& item) {
            from.push_back(item->key);
            return from.size() < 3;
        });
        std::vector<int> expected;
        for (auto at = model.lower_bound(key); at != model.end() && expected.size() < 3; ++at) {
            expected.push_back(at->first);
        }
        CHECK(from == expected);
    }
}

struct Row {
    const char* name;
    int keys;         // keys are below it
    int start;        // so many items at first
    int changes;      // at most so many at a time
    unsigned goAway;  // of ten changes
};

// A collection that grows, shrinks to nothing and grows again is at any time what a map is, and a
// snapshot taken before stays what it was.
void check(const Row& row, unsigned seed) {
    CAPTURE(row.name);
    CAPTURE(seed);
    std::mt19937 engine(seed);
    const auto below = [&](int end) {
        return static_cast<int>(engine() % static_cast<unsigned>(end));
    };
    Model model;
    while (static_cast<int>(model.size()) < row.start) {
        model[below(row.keys)] = below(1000);
    }
    Snapshot snapshot = made(model);
    for (int round = 0; round < 60; ++round) {
        const Model before = model;
        const Snapshot old = snapshot;
        const unsigned goAway = round % 30 < 20 ? row.goAway : 10 - row.goAway;
        std::map<int, std::optional<int>> wanted;
        for (int change = below(row.changes) + 1; change > 0; --change) {
            const int key = below(row.keys);
            if (engine() % 10 < goAway) {
                wanted[key] = std::nullopt;
                model.erase(key);
            } else {
                model[key] = *(wanted[key] = below(1000));
            }
        }
        snapshot = snapshot.with(changesOf(wanted));
        REQUIRE(contentOf(snapshot) == model);
        REQUIRE(contentOf(old) == before);
        checkLookUps(snapshot, model, row.keys, engine);
        for (std::size_t chunk = 0; chunk < snapshot.chunks(); ++chunk) {
            CHECK(!snapshot.chunk(chunk).empty());
            CHECK(snapshot.chunk(chunk).size() <= 64);
        }
        CHECK(snapshot.chunks() <= 2 + snapshot.size() / 8);
    }
}

}  // namespace

TEST_CASE("a snapshot with changes is what a map with the same changes is") {
    const Row rows[] = {
        {"from nothing", 50, 0, 5, 3},
        {"much at a time", 3000, 1500, 2500, 5},
        {"large and emptied", 2500, 2400, 600, 9},
        {"one at a time", 1200, 1100, 1, 5},
        {"in front and behind", 8, 3, 8, 5},
    };
    for (const Row& row : rows) {
        for (unsigned seed = 1; seed <= 4; ++seed) {
            check(row, seed);
        }
    }
}

TEST_CASE("a changed snapshot shares what has not changed") {
    Model model;
    for (int key = 0; key < 20000; ++key) {
        model[key * 2] = key;
    }
    const Snapshot before = made(model);
    const Snapshot after = before.with(changesOf({{20001, 1}}));
    std::size_t shared = 0;
    for (std::size_t chunk = 0; chunk < after.chunks(); ++chunk) {
        shared +=
            chunk < before.chunks() && after.chunk(chunk).data() == before.chunk(chunk).data();
    }
    CHECK(after.size() == 20001);
    CHECK(shared + 1 >= before.chunks());
}
