// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace tessaly::base {

/// A text that many may hold and nobody changes. Copies share the bytes, which live as long as one
/// of them. Any thread.
class SharedText {
public:
    SharedText() = default;
    explicit SharedText(std::string text);

    std::string_view view() const { return _text; }
    operator std::string_view() const { return _text; }

private:
    friend class TextArena;
    SharedText(std::shared_ptr<const void> owner, std::string_view text)
        : _owner(std::move(owner)), _text(text) {}

    std::shared_ptr<const void> _owner;
    std::string_view _text;
};

/// Keeps many small texts in a few large pieces of memory. A text that stays keeps its whole piece
/// (2 MB at most) alive: for the texts of one big reading, most of which live and die together.
/// Not for two threads at once; the texts it gives are for any.
class TextArena {
public:
    SharedText keep(std::string_view text);

private:
    void addPiece();

    std::shared_ptr<char> _piece;
    std::size_t _used = 0;  // of `_piece`; an arena begins as if a piece were full
    std::size_t _size = 0;
};

}  // namespace tessaly::base
