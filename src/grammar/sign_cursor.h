// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tessaly::grammar {

/// Goes through a text from one place of interest to the next: each "\n", "#", "@", "<" and ">",
/// which end a line or may open a mark. Only here is every byte of every note looked at, 64 at a
/// time; all later work jumps from place to place.
class SignCursor {
public:
    SignCursor() = default;
    /// The places from byte `from` on. `text` must outlive the cursor.
    SignCursor(std::string_view text, std::size_t from) : _text(text), _next(from) {}

    /// The next place; the size of the text behind the last.
    std::size_t next() {
        while (_signs == 0) {
            if (_next >= _text.size()) {
                return _text.size();
            }
            readBlock();
        }
        const auto place = _block + static_cast<std::size_t>(std::countr_zero(_signs));
        _signs &= _signs - 1;
        return place;
    }

private:
    void readBlock();

    std::string_view _text;
    std::uint64_t _signs = 0;  // of the block that was read last, a bit a byte, not yet told
    std::size_t _block = 0;    // where that begins
    std::size_t _next = 0;     // where the next begins
};

}  // namespace tessaly::grammar
