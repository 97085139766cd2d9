// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace tessaly::store {

/// Goes through the items of a `SortedSnapshot` and leaps over chunks that it shares with another.
template <class Snapshot>
class SnapshotWalk {
public:
    using Pointer = typename Snapshot::Pointer;

    explicit SnapshotWalk(const Snapshot& snapshot) : _snapshot(snapshot) {}

    bool isAtEnd() const { return _chunk == _snapshot.chunks(); }
    bool isAtChunk() const { return _item == 0; }
    std::span<const Pointer> chunk() const { return _snapshot.chunk(_chunk); }
    const Pointer& item() const { return chunk()[_item]; }

    void leap() {
        ++_chunk;
        _item = 0;
    }
    void step() {
        if (++_item == chunk().size()) {
            leap();
        }
    }

private:
    const Snapshot& _snapshot;
    std::size_t _chunk = 0;
    std::size_t _item = 0;
};

/// Calls `visit(before, after)`, pointers to items, in order of their keys, for each that one
/// snapshot has and the other has not (its pointer is null there), or that is another item with the
/// same key. Chunks that the two share cost nothing but a look. `Order` is the snapshots'.
template <class Order, class Snapshot, class Visit>
void forEachDifference(const Snapshot& before, const Snapshot& after, const Visit& visit) {
    SnapshotWalk<Snapshot> old(before);
    SnapshotWalk<Snapshot> now(after);
    while (!old.isAtEnd() || !now.isAtEnd()) {
        const bool both = !old.isAtEnd() && !now.isAtEnd();
        if (both && old.isAtChunk() && now.isAtChunk() &&
            old.chunk().data() == now.chunk().data()) {
            old.leap();
            now.leap();
        } else if (now.isAtEnd() ||
                   (both && Order::keyOf(*old.item()) < Order::keyOf(*now.item()))) {
            visit(old.item(), typename Snapshot::Pointer());
            old.step();
        } else if (old.isAtEnd() || Order::keyOf(*now.item()) < Order::keyOf(*old.item())) {
            visit(typename Snapshot::Pointer(), now.item());
            now.step();
        } else {
            if (old.item() != now.item()) {
                visit(old.item(), now.item());
            }
            old.step();
            now.step();
        }
    }
}

}  // namespace tessaly::store
