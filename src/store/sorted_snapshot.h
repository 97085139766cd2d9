// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace tessaly::store {

/// Items in order that nobody changes. A changed collection is another snapshot that shares all but
/// a few hundred pointers with this one: what it costs depends on how much changes, not on how much
/// there is. `Order` has a type `Key` and static `Key keyOf(const Item&)`; keys are compared by
/// `<`.
template <class Item, class Order>
class SortedSnapshot {
public:
    using Pointer = std::shared_ptr<const Item>;
    using Key = typename Order::Key;

    /// An item that comes in place of the one with its key, or, null, what goes.
    struct Change {
        Key key;
        Pointer item;
    };

    SortedSnapshot() = default;
    /// `items` are in order, their keys unequal.
    explicit SortedSnapshot(std::vector<Pointer> items) {
        _size = items.size();
        addChunks(std::move(items));
    }

    std::size_t size() const { return _size; }
    bool empty() const { return _size == 0; }

    /// Null: there is none.
    Pointer find(const Key& key) const {
        if (empty()) {
            return nullptr;
        }
        const Chunk& chunk = *_chunks[chunkOf(key)].items;
        const auto at = lowerBound(chunk, chunk.begin(), key);
        return at != chunk.end() && !(key < Order::keyOf(**at)) ? *at : nullptr;
    }

    /// This, with the changes made; they are in order, their keys unequal. A key that goes and is
    /// not there is ignored.
    SortedSnapshot with(std::span<const Change> changes) const {
        SortedSnapshot next;
        next._size = _size;
        next._chunks.reserve(_chunks.size() + 1 + changes.size() / largestChunk);
        std::size_t taken = 0;
        while (!changes.empty()) {
            const std::size_t index = empty() ? 0 : chunkOf(changes.front().key);
            for (; taken < index; ++taken) {
                next.addChunk(_chunks[taken]);
            }
            const auto own = changes.first(changesOf(index, changes));
            Chunk items = merged(empty() ? Chunk() : *_chunks[index].items, own);
            next._size += items.size() - (empty() ? 0 : _chunks[index].items->size());
            next.addChunks(std::move(items));
            changes = changes.subspan(own.size());
            taken = index + 1;
        }
        for (; taken < _chunks.size(); ++taken) {
            next.addChunk(_chunks[taken]);
        }
        return next;
    }

    /// Calls `visit(const Pointer&)` for each in order.
    template <class Visit>
    void forEach(const Visit& visit) const {
        for (const auto& chunk : _chunks) {
            for (const Pointer& item : *chunk.items) {
                visit(item);
            }
        }
    }
    /// Calls `visit(const Pointer&)` for those from `first` on for as long as it returns true.
    template <class Visit>
    void forEachFrom(const Key& first, const Visit& visit) const {
        for (std::size_t index = empty() ? 0 : chunkOf(first); index < _chunks.size(); ++index) {
            const Chunk& chunk = *_chunks[index].items;
            for (auto at = lowerBound(chunk, chunk.begin(), first); at != chunk.end(); ++at) {
                if (!visit(*at)) {
                    return;
                }
            }
        }
    }

    /// For work that is shared among threads: the items lie in so many runs, in order.
    static constexpr std::size_t largestChunk = 64;  ///< items in a run at most
    std::size_t chunks() const { return _chunks.size(); }
    std::span<const Pointer> chunk(std::size_t index) const { return *_chunks[index].items; }

private:
    using Chunk = std::vector<Pointer>;
    /// The first key stands beside the items, so that a search does not run after every chunk.
    struct SharedChunk {
        explicit SharedChunk(Chunk all)
            : items(std::make_shared<const Chunk>(std::move(all))),
              first(Order::keyOf(*items->front())) {}

        std::shared_ptr<const Chunk> items;
        Key first;
    };
    using Place = typename Chunk::const_iterator;

    // A change copies a chunk's pointers and the list of chunks. Small chunks make many changes at
    // once cheap, and the list of 100,000 items' chunks is still short.
    static constexpr std::size_t smallestChunk = largestChunk / 8;

    static Place lowerBound(const Chunk& chunk, Place from, const Key& key) {
        return std::lower_bound(from, chunk.end(), key, [](const Pointer& item, const Key& sought) {
            return Order::keyOf(*item) < sought;
        });
    }

    // The chunk that holds `key` if any does. There are chunks.
    std::size_t chunkOf(const Key& key) const {
        const auto behind = std::upper_bound(
            _chunks.begin() + 1, _chunks.end(), key,
            [](const Key& sought, const SharedChunk& chunk) { return sought < chunk.first; });
        return static_cast<std::size_t>(behind - _chunks.begin()) - 1;
    }

    // How many of the changes, the first of which is for chunk `index`, are for it.
    std::size_t changesOf(std::size_t index, std::span<const Change> changes) const {
        if (index + 1 >= _chunks.size()) {
            return changes.size();
        }
        const Key end = _chunks[index + 1].first;
        const auto behind = std::find_if(changes.begin(), changes.end(),
                                         [&](const Change& change) { return !(change.key < end); });
        return static_cast<std::size_t>(behind - changes.begin());
    }

    // Looks for the places alone, so that the items between them are not touched.
    static Chunk merged(const Chunk& chunk, std::span<const Change> changes) {
        Chunk result;
        result.reserve(chunk.size() + changes.size());
        Place from = chunk.begin();
        for (const Change& change : changes) {
            const Place at = lowerBound(chunk, from, change.key);
            result.insert(result.end(), from, at);
            const bool isThere = at != chunk.end() && !(change.key < Order::keyOf(**at));
            from = isThere ? at + 1 : at;
            if (change.item) {
                result.push_back(change.item);
            }
        }
        result.insert(result.end(), from, chunk.end());
        return result;
    }

    // Adds items as chunks of about equal size.
    void addChunks(Chunk items) {
        if (items.size() <= largestChunk) {
            if (!items.empty()) {
                addChunk(SharedChunk(std::move(items)));
            }
            return;
        }
        const std::size_t count = (items.size() + largestChunk - 1) / largestChunk;
        const auto place = [&](std::size_t index) {
            return std::make_move_iterator(
                items.begin() + static_cast<std::ptrdiff_t>(items.size() * index / count));
        };
        for (std::size_t index = 0; index < count; ++index) {
            addChunk(SharedChunk(Chunk(place(index), place(index + 1))));
        }
    }

    // Adds a chunk behind the others; joined with the last when either is tiny.
    void addChunk(SharedChunk chunk) {
        const std::size_t before = _chunks.empty() ? largestChunk : _chunks.back().items->size();
        const std::size_t own = chunk.items->size();
        if (std::min(before, own) < smallestChunk && before + own <= largestChunk / 2) {
            Chunk joined(*_chunks.back().items);
            joined.insert(joined.end(), chunk.items->begin(), chunk.items->end());
            _chunks.back() = SharedChunk(std::move(joined));
        } else {
            _chunks.push_back(std::move(chunk));
        }
    }

    std::vector<SharedChunk> _chunks;  ///< none is empty
    std::size_t _size = 0;
};

}  // namespace tessaly::store
