// SPDX-License-Identifier: MIT
#include "app/fuzzy_match.h"

#include <algorithm>

#include "base/utf8.h"
#include "search/folded_text.h"

namespace tessaly::app {

namespace {

constexpr std::size_t mostMatchedBytes = 256;
constexpr int letterScore = 16;
constexpr int textStartBonus = 12;
constexpr int wordStartBonus = 10;
constexpr int togetherBonus = 14;
constexpr std::size_t mostGapPenalty = 8;
constexpr std::size_t bytesPerLengthPenalty = 8;
constexpr std::size_t noOccurrence = static_cast<std::size_t>(-1);

/// Whether a letter here begins a word. Letters beyond ASCII count as parts of words.
bool beginsWord(std::string_view text, std::size_t at) {
    const auto before = static_cast<unsigned char>(text[at - 1]);
    const bool isWordPart =
        before >= 0x80 || (before >= '0' && before <= '9') || (before >= 'a' && before <= 'z');
    return !isWordPart;
}

int placeScore(std::string_view text, std::size_t at) {
    if (at == 0) {
        return letterScore + textStartBonus;
    }
    return letterScore + (beginsWord(text, at) ? wordStartBonus : 0);
}

int gapPenalty(std::size_t gap) {
    return static_cast<int>(std::min(gap, mostGapPenalty));
}

std::uint64_t bitOf(char byte) {
    return std::uint64_t{1} << (static_cast<unsigned char>(byte) % 64);
}

std::size_t utf16At(std::string_view text, std::size_t byte) {
    return base::utf16Length(text.substr(0, byte));
}

void addRange(std::vector<base::TextRange>& ranges, base::TextRange range) {
    if (!ranges.empty() && ranges.back().end() >= range.location) {
        ranges.back().length = std::max(ranges.back().end(), range.end()) - ranges.back().location;
    } else {
        ranges.push_back(range);
    }
}

}  // namespace

std::uint64_t lettersIn(std::string_view foldedText) {
    std::uint64_t bits = 0;
    for (const char byte : foldedText) {
        bits |= bitOf(byte);
    }
    return bits;
}

FuzzyPattern::FuzzyPattern(std::string_view typed) : _folded(search::folded(typed)) {
    for (std::size_t at = 0; at < _folded.size();) {
        const base::CodePoint letter = base::codePointAt(_folded, at);
        if (!base::isWhiteSpace(letter.value)) {
            _letters.push_back(std::string_view(_folded).substr(at, letter.size));
            _bits |= lettersIn(_letters.back());
        }
        at += letter.size;
    }
}

/// Where the letter stands behind an occurrence of the one before it, and the best way to there.
void FuzzyPattern::addOccurrences(std::string_view foldedText, std::size_t letter,
                                  std::size_t firstBefore) {
    const std::size_t endBefore = _occurrences.size();
    const bool isFirst = letter == 0;
    const std::size_t lengthBefore = isFirst ? 0 : _letters[letter - 1].size();
    const std::size_t from = isFirst ? 0 : _occurrences[firstBefore].at + lengthBefore;
    for (std::size_t at = foldedText.find(_letters[letter], from); at != std::string_view::npos;
         at = foldedText.find(_letters[letter], at + 1)) {
        Occurrence found{at, isFirst ? placeScore(foldedText, at) - gapPenalty(at) : 0,
                         noOccurrence};
        for (std::size_t i = firstBefore; i < endBefore; ++i) {
            const Occurrence& before = _occurrences[i];
            if (before.at + lengthBefore > at) {
                break;
            }
            const std::size_t gap = at - before.at - lengthBefore;
            const int score = before.score + placeScore(foldedText, at) +
                              (gap == 0 ? togetherBonus : -gapPenalty(gap));
            if (found.before == noOccurrence || score > found.score) {
                found.score = score;
                found.before = i;
            }
        }
        _occurrences.push_back(found);
    }
}

bool FuzzyPattern::align(std::string_view foldedText) {
    _occurrences.clear();
    _lastLetter = 0;
    for (std::size_t letter = 0; letter < _letters.size(); ++letter) {
        const std::size_t first = _occurrences.size();
        addOccurrences(foldedText, letter, _lastLetter);
        if (_occurrences.size() == first) {
            return false;
        }
        _lastLetter = first;
    }
    return true;
}

std::size_t FuzzyPattern::bestEnd() const {
    const auto best = std::max_element(
        _occurrences.begin() + static_cast<std::ptrdiff_t>(_lastLetter), _occurrences.end(),
        [](const Occurrence& a, const Occurrence& b) { return a.score < b.score; });
    return static_cast<std::size_t>(best - _occurrences.begin());
}

std::optional<int> FuzzyPattern::score(std::string_view foldedText) {
    const int lengthPenalty =
        static_cast<int>(std::min(foldedText.size(), mostMatchedBytes) / bytesPerLengthPenalty);
    if (isEmpty()) {
        return -lengthPenalty;
    }
    if (!align(foldedText.substr(0, mostMatchedBytes))) {
        return std::nullopt;
    }
    return _occurrences[bestEnd()].score - lengthPenalty;
}

std::optional<FuzzyMatch> FuzzyPattern::match(std::string_view text) {
    const std::string folded = search::folded(text);
    const auto found = score(folded);
    if (!found) {
        return std::nullopt;
    }
    FuzzyMatch match{*found, {}};
    for (const search::Stretch place : places()) {
        const search::Stretch own = search::unfolded(text, place);
        const std::size_t start = utf16At(text, own.start);
        addRange(match.ranges, {start, utf16At(text, own.end) - start});
    }
    return match;
}

/// Of the text that was aligned last, in order; letters that stand together are one.
std::vector<search::Stretch> FuzzyPattern::places() const {
    std::vector<search::Stretch> places;
    std::size_t letter = _letters.size();
    for (std::size_t i = isEmpty() ? noOccurrence : bestEnd(); i != noOccurrence;
         i = _occurrences[i].before) {
        const std::size_t start = _occurrences[i].at;
        const std::size_t end = start + _letters[--letter].size();
        if (!places.empty() && places.back().start == end) {
            places.back().start = start;
        } else {
            places.push_back({start, end});
        }
    }
    std::ranges::reverse(places);
    return places;
}

std::optional<FuzzyMatch> fuzzyMatch(std::string_view typed, std::string_view text) {
    return FuzzyPattern(typed).match(text);
}

}  // namespace tessaly::app
