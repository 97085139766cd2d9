// SPDX-License-Identifier: MIT
#include "base/character_iterator.h"

#include <cstdint>
#include <memory>
#include <utility>

#include <unicode/ubrk.h>
#include <unicode/utext.h>

namespace tessaly::base {

namespace {

using Iterator = std::unique_ptr<UBreakIterator, void (*)(UBreakIterator*)>;

Iterator made() {
    UErrorCode status = U_ZERO_ERROR;
    Iterator iterator(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status), ubrk_close);
    return U_SUCCESS(status) ? std::move(iterator) : Iterator(nullptr, ubrk_close);
}

}  // namespace

UBreakIterator* characterIterator(std::string_view text) {
    thread_local const Iterator iterator = made();
    if (iterator != nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        UText opened = UTEXT_INITIALIZER;
        utext_openUTF8(&opened, text.data(), static_cast<std::int64_t>(text.size()), &status);
        ubrk_setUText(iterator.get(), &opened, &status);
        utext_close(&opened);
    }
    return iterator.get();
}

}  // namespace tessaly::base
