// SPDX-License-Identifier: MIT
#include "base/shared_text.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <sys/mman.h>

namespace tessaly::base {

namespace {

/// One huge page: a note's bytes are touched once, and a fault for every 4 KB would cost as much as
/// reading them from the page cache.
constexpr std::size_t pieceSize = std::size_t{2} << 20;
/// Larger texts get memory of their own, so that a piece is never left half empty.
constexpr std::size_t largestShared = pieceSize / 8;

}  // namespace

SharedText::SharedText(std::string text) {
    auto owner = std::make_shared<const std::string>(std::move(text));
    _text = *owner;
    _owner = std::move(owner);
}

SharedText TextArena::keep(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    if (text.size() > largestShared) {
        return SharedText(std::string(text));
    }
    if (_size - _used < text.size()) {
        addPiece();
    }
    char* place = _piece.get() + _used;
    std::memcpy(place, text.data(), text.size());
    _used += text.size();
    return SharedText(_piece, {place, text.size()});
}

void TextArena::addPiece() {
    void* memory = std::aligned_alloc(pieceSize, pieceSize);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    // Only advice: without huge pages the piece works as well, and slower.
    madvise(memory, pieceSize, MADV_HUGEPAGE);
    _piece.reset(static_cast<char*>(memory), std::free);
    _used = 0;
    _size = pieceSize;
}

}  // namespace tessaly::base
