// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <string_view>

#include <unicode/ubrk.h>

#include "base/character_iterator.h"
#include "base/utf8.h"
#include "search/folded_text.h"

namespace tessaly::search {

Stretch unfolded(std::string_view text, Stretch inFolded) {
    UBreakIterator* const iterator = base::isAscii(text) ? nullptr : base::characterIterator(text);
    if (iterator == nullptr) {
        return inFolded;
    }
    Stretch result{text.size(), text.size()};
    std::size_t start = 0;
    std::size_t foldedEnd = 0;
    for (auto next = ubrk_next(iterator); next != UBRK_DONE; next = ubrk_next(iterator)) {
        const auto end = static_cast<std::size_t>(next);
        foldedEnd += folded(text.substr(start, end - start)).size();
        if (foldedEnd > inFolded.start) {
            result.start = std::min(result.start, start);
            if (foldedEnd >= inFolded.end) {
                result.end = inFolded.end > inFolded.start ? end : result.start;
                break;
            }
        }
        start = end;
    }
    return result;
}

}  // namespace tessaly::search
