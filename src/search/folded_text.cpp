// SPDX-License-Identifier: MIT
#include "search/folded_text.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/normalise.h"
#include "base/utf8.h"
#include "search/canonical_order.h"
#include "search/folding_class.h"

namespace tessaly::search {

namespace {

using Word = std::uint64_t;
constexpr Word eachByte = 0x0101'0101'0101'0101;
constexpr Word highBits = 0x80 * eachByte;

Word wordAt(const char* text) {
    Word word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

/// The end of the ASCII characters that begin at `at`.
std::size_t asciiEnd(std::string_view text, std::size_t at) {
    for (; at + sizeof(Word) <= text.size(); at += sizeof(Word)) {
        const Word beyond = wordAt(text.data() + at) & highBits;
        if (beyond != 0) {
            const int bits = std::endian::native == std::endian::little ? std::countr_zero(beyond)
                                                                        : std::countl_zero(beyond);
            return at + static_cast<unsigned>(bits) / 8;
        }
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) {
        ++at;
    }
    return at;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// As base::codePointAt; most of the texts that are not ASCII go through here.
inline base::CodePoint quickCodePointAt(std::string_view text, std::size_t at) {
    const auto bits = [&](std::size_t i, unsigned mask) -> char32_t {
        return static_cast<unsigned char>(text[at + i]) & mask;
    };
    const unsigned lead = bits(0, 0xFF);
    if (lead >= 0xC2 && lead < 0xE0 && at + 1 < text.size() && isContinuation(text[at + 1])) {
        return {bits(0, 0x1F) << 6 | bits(1, 0x3F), 2};
    }
    // Not those with overlong forms or surrogates.
    if (lead > 0xE0 && lead < 0xF0 && lead != 0xED && at + 2 < text.size() &&
        isContinuation(text[at + 1]) && isContinuation(text[at + 2])) {
        return {bits(0, 0x0F) << 12 | bits(1, 0x3F) << 6 | bits(2, 0x3F), 3};
    }
    return base::codePointAt(text, at);
}

FoldingClass classOf(base::CodePoint c) {
    const bool isBroken = c.size == 1 && c.value >= 0x80;
    return isBroken         ? FoldingClass::changing
           : c.value < 0x80 ? FoldingClass::plain
                            : foldingClass(c.value);
}

bool partBeginsAt(std::string_view text, std::size_t at) {
    return at == text.size() || beginsPart(classOf(quickCodePointAt(text, at)));
}

/// The end of the plain characters that begin at `at`.
std::size_t plainEnd(std::string_view text, std::size_t at) {
    while (at < text.size()) {
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            at = asciiEnd(text, at + 1);
            continue;
        }
        const base::CodePoint c = quickCodePointAt(text, at);
        if (classOf(c) != FoldingClass::plain) {
            break;
        }
        at += c.size;
    }
    return at;
}

/// The start of the character that ends at `end`, in bytes that are UTF-8 there.
std::size_t lastStart(std::string_view text, std::size_t end) {
    do {
        --end;
    } while (isContinuation(text[end]));
    return end;
}

char32_t smallAscii(char32_t c) {
    return c >= 'A' && c <= 'Z' ? c | 0x20 : c;
}

/// Where a text begins to differ from its folded form, but for the case of ASCII letters.
struct Difference {
    std::size_t at;    ///< the character that does not stay; the text's end: all do
    std::size_t part;  ///< where the part begins that it belongs to
};

/// Looks for the first difference at or behind a place where a part may begin.
class DifferenceSearch {
public:
    DifferenceSearch(std::string_view text, std::size_t from) : _text(text), _part(from) {}

    Difference run() {
        std::size_t at = _part;
        for (std::size_t end = plainEnd(_text, at); end < _text.size(); end = plainEnd(_text, at)) {
            if (end > at) {
                _part = _starter = lastStart(_text, end);
                _lastPlace = 0;
            }
            const base::CodePoint c = quickCodePointAt(_text, end);
            const FoldingClass sort = classOf(c);
            if (sort == FoldingClass::capital) {
                return {end, end};
            }
            if (sort == FoldingClass::changing || !markStays(end, c.value, sort)) {
                return {end, _part};
            }
            at = end + c.size;
        }
        return {_text.size(), _text.size()};
    }

private:
    bool markStays(std::size_t at, char32_t mark, FoldingClass sort) {
        const bool isComposing = sort == FoldingClass::composing;
        const std::uint8_t place =
            isComposing ? combiningClass(mark) : static_cast<std::uint8_t>(sort);
        const bool isOutOfOrder = place != 0 && place < _lastPlace;
        const bool isBlocked = _lastPlace != 0 && _lastPlace >= place;
        if (isOutOfOrder || (isComposing && !isBlocked && melts(mark, place))) {
            return false;
        }
        if (place == 0) {
            _starter = at;
        }
        _lastPlace = place;
        return true;
    }

    /// May be wrong for a capital that has a composed form where the small letter has none.
    bool melts(char32_t mark, std::uint8_t place) const {
        const char32_t starter = quickCodePointAt(_text, _starter).value;
        const char32_t small = smallAscii(starter);
        if (starter < 0x80) {
            return composition(starter, mark) || (small != starter && composition(small, mark));
        }
        // A mark can come before those that the starter is composed of, and melt in their place.
        return (place != 0 && lastCombiningClass(starter) > place) || composition(starter, mark);
    }

    std::string_view _text;
    std::size_t _part;
    std::size_t _starter = _part;  // which the next marks stand on
    std::uint8_t _lastPlace = 0;   // combining class of the last of them
};

/// Eight characters' ASCII capitals become small.
Word loweredWord(Word word) {
    const Word low = word & ~highBits;
    const Word fromA = low + (0x80 - 'A') * eachByte;
    const Word beyondZ = low + (0x7F - 'Z') * eachByte;
    return word | ((fromA & ~beyondZ & ~word & highBits) >> 2);
}

/// Appends `text` with ASCII capitals made small.
void appendLowered(std::string& result, std::string_view text) {
    std::size_t at = result.size();
    result.append(text);
    for (; at + sizeof(Word) <= result.size(); at += sizeof(Word)) {
        const Word word = loweredWord(wordAt(result.data() + at));
        std::memcpy(result.data() + at, &word, sizeof word);
    }
    for (; at < result.size(); ++at) {
        const char c = result[at];
        result[at] = static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
    }
}

void finalSigmasAsOthers(std::string& text) {
    constexpr std::string_view finalSigma = "\u03C2";
    constexpr std::string_view sigma = "\u03C3";
    for (auto at = text.find(finalSigma); at != std::string::npos; at = text.find(finalSigma, at)) {
        text.replace(at, sigma.size(), sigma);
    }
}

std::string foldedByRules(std::string_view text) {
    constexpr std::size_t usualPart = 64;
    std::string lower = base::lowerCased(
        base::nfc(text.size() <= usualPart ? std::string(text) : inCanonicalOrder(text)));
    finalSigmasAsOthers(lower);
    // Capitals can have no composed form with a mark where small letters have one.
    return base::nfc(lower);
}

/// Folds a text part by part: what stays is copied, what does not goes, with the part that it
/// belongs to, through all rules, unless it is of the usual kinds.
class Folding {
public:
    explicit Folding(std::string_view text) : _text(text) { _result.reserve(text.size()); }

    std::string run() {
        while (_done < _text.size()) {
            const Difference next = DifferenceSearch(_text, _done).run();
            appendLowered(_result, _text.substr(_done, next.part - _done));
            _done = next.part;
            if (_done < _text.size() && !takeCharacter()) {
                takePart();
            }
        }
        return std::move(_result);
    }

private:
    /// A capital, or a letter with marks that all melt into it.
    bool takeCharacter() {
        const base::CodePoint first = quickCodePointAt(_text, _done);
        const FoldingClass sort = classOf(first);
        if (!beginsPart(sort)) {
            return false;
        }
        char32_t made =
            sort == FoldingClass::capital ? smallLetter(first.value) : smallAscii(first.value);
        std::size_t at = _done + first.size;
        for (std::uint8_t last = 0; !partBeginsAt(_text, at);) {
            const base::CodePoint mark = quickCodePointAt(_text, at);
            const std::uint8_t place = combiningClass(mark.value);
            const auto composed = composition(made, mark.value);
            if (!composed || place < last) {
                return false;
            }
            made = *composed;
            last = place;
            at += mark.size;
        }
        if (made >= 0x80 && foldingClass(made) != FoldingClass::plain) {
            return false;
        }
        base::appendUtf8(_result, made);
        _done = at;
        return true;
    }

    void takePart() {
        std::size_t end = _done;
        do {
            end += quickCodePointAt(_text, end).size;
        } while (!partBeginsAt(_text, end));
        _result += foldedByRules(_text.substr(_done, end - _done));
        _done = end;
    }

    std::string_view _text;
    std::string _result;
    std::size_t _done = 0;  // bytes of the text whose folded form is in the result
};

}  // namespace

std::string folded(std::string_view text) {
    return Folding(text).run();
}

bool needsFolding(std::string_view text) {
    return DifferenceSearch(text, 0).run().at < text.size();
}

}  // namespace tessaly::search
