// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessaly::search {

/// `text` (UTF-8) as searches compare it: composed (NFC), in the root locale's lower case, composed
/// again, and with a final sigma as any other, so that the beginning of a Greek word is found while
/// it is typed. Line breaks stay: line n of the one is line n of the other. What it makes of a text
/// is what it makes of its parts, wherever that is cut between two grapheme clusters. Bytes that
/// are no UTF-8 stay.
std::string folded(std::string_view text);

/// Whether `folded(text)` differs from `text` in more than the case of ASCII letters. Most notes'
/// text can be searched as it is; this tells so at some gigabytes a second for ASCII. True for some
/// rare texts that do not differ: bytes that are no UTF-8, or a mark after a letter that is
/// composed with another one.
bool needsFolding(std::string_view text);

/// A stretch of a text in bytes.
struct Stretch {
    std::size_t start = 0;
    std::size_t end = 0;

    bool operator==(const Stretch&) const = default;
};

/// Where in `text` a stretch of `folded(text)` comes from: the grapheme clusters that it touches.
/// An empty stretch stays empty, before the cluster in which it is. Linear in the text; for the few
/// lines that are shown.
Stretch unfolded(std::string_view text, Stretch inFolded);

}  // namespace tessaly::search
