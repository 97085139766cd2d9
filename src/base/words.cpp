// SPDX-License-Identifier: MIT
#include "base/words.h"

#include <array>
#include <cstdint>
#include <memory>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include "base/utf8.h"

namespace tessaly::base {

namespace {

using WordIterator = std::unique_ptr<UBreakIterator, void (*)(UBreakIterator*)>;

/// Null without ICU's data.
WordIterator madeWordIterator() {
    UErrorCode status = U_ZERO_ERROR;
    WordIterator iterator(ubrk_open(UBRK_WORD, "", nullptr, 0, &status), ubrk_close);
    return U_SUCCESS(status) ? std::move(iterator) : WordIterator(nullptr, ubrk_close);
}

/// What an ASCII character does to words.
enum AsciiSort : std::uint8_t {
    parts = 0,
    letter = 1,
    digit = 2,
    joiner = 4,        // "_"
    joinsAsLetter = 8  // "@", so that names with it stay whole
};

constexpr std::array<std::uint8_t, 128> asciiSorts = [] {
    std::array<std::uint8_t, 128> sorts{};
    for (std::size_t c = 0; c < sorts.size(); ++c) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool isDigit = c >= '0' && c <= '9';
        sorts[c] = isLetter   ? letter
                   : isDigit  ? digit
                   : c == '_' ? joiner
                   : c == '@' ? joinsAsLetter
                              : parts;
    }
    return sorts;
}();

std::uint8_t sortAt(std::string_view text, std::size_t at) {
    return asciiSorts[static_cast<unsigned char>(text.data()[at]) & 0x7F];
}

/// Whether the sign there parts no letters, or no digits, that stand on both of its sides.
bool isWithinWord(std::string_view text, std::size_t at) {
    if (at + 1 >= text.size()) {
        return false;
    }
    constexpr std::uint8_t letters = letter | joinsAsLetter;
    const std::uint8_t before = sortAt(text, at - 1);
    const std::uint8_t behind = sortAt(text, at + 1);
    switch (text[at]) {
        case '\'':
        case '.':
            return ((before & letters) != 0 && (behind & letters) != 0) ||
                   (before == digit && behind == digit);
        case ',':
        case ';': return before == digit && behind == digit;
        default: return false;
    }
}

/// The rules as they are for ASCII, in one step a byte: most texts are read in no other way.
template <class Visit>
void visitAsciiWords(std::string_view text, const Visit& visit) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t start = at;
        std::uint8_t found = 0;
        for (; at < text.size(); ++at) {
            const std::uint8_t sort = sortAt(text, at);
            if (sort == parts && (at == start || !isWithinWord(text, at))) {
                break;
            }
            found |= sort;
        }
        if ((found & (letter | digit)) != 0) {
            visit(WordSpan{start, at});
        }
        at += at == start ? 1 : 0;
    }
}

bool hasLetterOrDigit(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint next = codePointAt(text, at);
        if (u_isalnum(static_cast<UChar32>(next.value))) {
            return true;
        }
        at += next.size;
    }
    return false;
}

/// False: there is nobody who knows Unicode's rules.
template <class Visit>
bool visitUnicodeWords(std::string_view text, const Visit& visit) {
    thread_local const WordIterator iterator = madeWordIterator();
    if (iterator == nullptr) {
        return false;
    }
    UErrorCode status = U_ZERO_ERROR;
    UText opened = UTEXT_INITIALIZER;
    utext_openUTF8(&opened, text.data(), static_cast<std::int64_t>(text.size()), &status);
    ubrk_setUText(iterator.get(), &opened, &status);
    std::size_t start = 0;
    for (std::int32_t found = ubrk_next(iterator.get()); found != UBRK_DONE;
         found = ubrk_next(iterator.get())) {
        const WordSpan piece{start, static_cast<std::size_t>(found)};
        if (ubrk_getRuleStatus(iterator.get()) >= UBRK_WORD_NONE_LIMIT &&
            hasLetterOrDigit(piece.in(text))) {
            visit(piece);
        }
        start = piece.end;
    }
    utext_close(&opened);
    return true;
}

template <class Visit>
void visitWords(std::string_view text, const Visit& visit) {
    if (isAscii(text) || !visitUnicodeWords(text, visit)) {
        visitAsciiWords(text, visit);
    }
}

bool isApostrophe(char32_t c) {
    return c == U'\'' || c == U'\u2019';
}

}  // namespace

void findWords(std::string_view text, std::vector<WordSpan>& words) {
    words.clear();
    visitWords(text, [&](WordSpan word) { words.push_back(word); });
}

std::size_t wordCount(std::string_view text) {
    std::size_t count = 0;
    visitWords(text, [&](WordSpan) { ++count; });
    return count;
}

bool isOfLetters(std::string_view text) {
    bool endsInLetter = false;
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint next = codePointAt(text, at);
        const auto value = static_cast<UChar32>(next.value);
        const bool isLetter =
            u_isalpha(value) || (endsInLetter && (U_GET_GC_MASK(value) & U_GC_M_MASK) != 0);
        if (!isLetter && !(endsInLetter && isApostrophe(next.value))) {
            return false;
        }
        endsInLetter = isLetter;
        at += next.size;
    }
    return endsInLetter;
}

bool isInCapitals(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint next = codePointAt(text, at);
        if (u_islower(static_cast<UChar32>(next.value))) {
            return false;
        }
        at += next.size;
    }
    return true;
}

}  // namespace tessaly::base
