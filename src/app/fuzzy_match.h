// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_range.h"
#include "search/folded_text.h"

namespace tessaly::app {

/// How well a text answers what was typed: its letters in order, better at words' starts and
/// together. Higher is better.
struct FuzzyMatch {
    int score = 0;
    std::vector<base::TextRange> ranges;  ///< of the text, in order, UTF-16 units
};

/// What is typed, ready to be looked for in many texts. White space in it only parts words. Not for
/// two threads at once.
class FuzzyPattern {
public:
    explicit FuzzyPattern(std::string_view typed);
    FuzzyPattern(const FuzzyPattern&) = delete;
    FuzzyPattern& operator=(const FuzzyPattern&) = delete;

    /// As it is looked for: what begins with it is found in fewer texts, all of them its own.
    const std::string& folded() const { return _folded; }
    /// Nothing was typed; every text answers that.
    bool isEmpty() const { return _letters.empty(); }
    /// A set of bits that is within `lettersIn` of each text that answers.
    std::uint64_t letters() const { return _bits; }
    /// Of a text that is folded already (`search::folded`). Nothing: it does not answer. Of long
    /// texts only the start counts.
    std::optional<int> score(std::string_view foldedText);
    /// With the places.
    std::optional<FuzzyMatch> match(std::string_view text);

private:
    struct Occurrence {
        std::size_t at;      ///< byte
        int score;           ///< of the best way to here
        std::size_t before;  ///< the occurrence of the letter before on that way
    };

    bool align(std::string_view foldedText);
    void addOccurrences(std::string_view foldedText, std::size_t letter, std::size_t firstBefore);
    std::size_t bestEnd() const;
    std::vector<search::Stretch> places() const;

    std::string _folded;
    std::vector<std::string_view> _letters;  ///< of `_folded`, a code point each
    std::uint64_t _bits = 0;
    std::vector<Occurrence> _occurrences;  ///< letter by letter
    std::size_t _lastLetter = 0;           ///< where the last letter's begin
};

/// The bits of a folded text's letters.
std::uint64_t lettersIn(std::string_view foldedText);

/// Both folded as search folds. Nothing: `text` does not answer.
std::optional<FuzzyMatch> fuzzyMatch(std::string_view typed, std::string_view text);

}  // namespace tessaly::app
