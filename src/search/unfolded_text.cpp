// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include "base/utf8.h"
#include "search/folded_text.h"

namespace tessaly::search {

namespace {

/// ICU's iterator takes long to make, so each thread keeps one.
icu::BreakIterator* threadsIterator() {
    thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        return U_SUCCESS(status) ? std::move(made) : nullptr;
    }();
    return iterator.get();
}

}  // namespace

Stretch unfolded(std::string_view text, Stretch inFolded) {
    icu::BreakIterator* const iterator = threadsIterator();
    if (base::isAscii(text) || iterator == nullptr) {
        return inFolded;
    }
    UErrorCode status = U_ZERO_ERROR;
    UText opened = UTEXT_INITIALIZER;
    utext_openUTF8(&opened, text.data(), static_cast<std::int64_t>(text.size()), &status);
    iterator->setText(&opened, status);
    utext_close(&opened);
    Stretch result{text.size(), text.size()};
    std::size_t start = 0;
    std::size_t foldedEnd = 0;
    for (auto next = iterator->next(); next != icu::BreakIterator::DONE; next = iterator->next()) {
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
