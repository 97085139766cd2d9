// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessaly::search {

/// A folded text that is looked for in others. These are folded, or need no folding
/// (`needsFolding`): then the case of their ASCII letters does not count. A value that does not
/// change; any thread.
class Needle {
public:
    static constexpr std::size_t npos = std::string_view::npos;

    Needle() = default;
    explicit Needle(std::string foldedText);

    const std::string& text() const { return _text; }
    bool empty() const { return _text.empty(); }

    /// The first byte of the first occurrence that begins at `from` or later; `npos`: there is
    /// none. An empty needle is found at once. Linear in the haystack, whatever the two hold; reads
    /// no byte outside of it.
    std::size_t find(std::string_view haystack, std::size_t from = 0) const;
    bool isIn(std::string_view haystack) const { return find(haystack) != npos; }

private:
    std::string _text;
    std::size_t _rareFirst = 0;  // places in `_text` of the two bytes that are looked for first
    std::size_t _rareSecond = 0;
};

}  // namespace tessaly::search
