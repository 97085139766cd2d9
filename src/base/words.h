// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tessaly::base {

/// A word of a text, in bytes.
struct WordSpan {
    std::size_t start = 0;
    std::size_t end = 0;

    std::string_view in(std::string_view text) const { return text.substr(start, end - start); }
    bool operator==(const WordSpan&) const = default;
};

/// The words of a text in order: what Unicode's rules (UAX #29) part and what holds a letter or a
/// digit, also in scripts that put no blanks between words. `words` is emptied first; giving the
/// same vector again saves allocations. Linear.
void findWords(std::string_view text, std::vector<WordSpan>& words);

/// How many `findWords` finds.
std::size_t wordCount(std::string_view text);

/// Whether a text holds letters and the marks on them, and apostrophes between them, and nothing
/// else.
bool isOfLetters(std::string_view text);

/// Whether no letter of a text has a lower case.
bool isInCapitals(std::string_view text);

}  // namespace tessaly::base
