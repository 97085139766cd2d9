// SPDX-License-Identifier: MIT
#include "app/spelling_words.h"

#include <algorithm>

#include "base/utf8.h"
#include "base/words.h"

namespace tessaly::app {

namespace {

using base::TextRange;
using base::WordSpan;

constexpr std::size_t longestAbbreviation = 5;
/// No dictionary has longer ones.
constexpr std::size_t longestWord = 60;

/// Of a line whose words are asked for from left to right.
class UnitCursor {
public:
    explicit UnitCursor(std::string_view line) : _line(line) {}

    std::size_t at(std::size_t byte) {
        _unit += base::utf16Length(_line.substr(_byte, byte - _byte));
        _byte = byte;
        return _unit;
    }

private:
    const std::string_view _line;
    std::size_t _byte = 0;
    std::size_t _unit = 0;
};

bool hasWords(LineLook::Kind kind) {
    using Kind = LineLook::Kind;
    return kind != Kind::code && kind != Kind::fence && kind != Kind::rule && kind != Kind::plain;
}

bool isOfLanguage(const LookSpan& span) {
    switch (span.kind) {
        case SpanKind::bold:
        case SpanKind::italic:
        case SpanKind::struck:
        case SpanKind::marked:
        case SpanKind::link: return true;
        default: return false;
    }
}

/// By start. Links without a title are found by their words, which are the address.
std::vector<TextRange> passedOver(const LineLook& look) {
    std::vector<TextRange> ranges{{0, std::max(look.indent.end(), look.marker.end())}};
    for (const LookSpan& span : look.spans) {
        if (!isOfLanguage(span)) {
            ranges.push_back(span.range);
        }
    }
    return ranges;
}

/// Whether ranges by start cover anything of others that are asked for from left to right.
class CoverCursor {
public:
    explicit CoverCursor(std::vector<TextRange> ranges) : _ranges(std::move(ranges)) {}

    bool covers(TextRange range) {
        for (; _next < _ranges.size() && _ranges[_next].location < range.end(); ++_next) {
            _end = std::max(_end, _ranges[_next].end());
        }
        return _end > range.location;
    }

private:
    const std::vector<TextRange> _ranges;
    std::size_t _next = 0;
    std::size_t _end = 0;
};

bool partsChunks(char c) {
    return static_cast<unsigned char>(c) <= ' ' ||
           std::string_view("()[]<>\"").find(c) != std::string_view::npos;
}

bool isAddressOrPath(std::string_view chunk) {
    for (const std::string_view beginning : {"www.", "/", "~/", "./", "../"}) {
        if (chunk.starts_with(beginning)) {
            return true;
        }
    }
    return chunk.find('@') != std::string_view::npos ||
           chunk.find('\\') != std::string_view::npos ||
           chunk.find("://") != std::string_view::npos;
}

/// Whether words, asked for from left to right, are parts of something that is none.
class ChunkCursor {
public:
    explicit ChunkCursor(std::string_view line) : _line(line) {}

    bool isInAddress(WordSpan word) {
        if (word.start >= _end) {
            std::size_t start = word.start;
            while (start > _end && !partsChunks(_line[start - 1])) {
                --start;
            }
            _end = word.end;
            while (_end < _line.size() && !partsChunks(_line[_end])) {
                ++_end;
            }
            _isAddress = isAddressOrPath(_line.substr(start, _end - start));
        }
        return _isAddress;
    }

private:
    const std::string_view _line;
    std::size_t _end = 0;
    bool _isAddress = false;
};

bool isEmphasisSign(char c) {
    return c == '*' || c == '_' || c == '~' || c == '=';
}

bool isWordByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || (byte >= '0' && byte <= '9') ||
           ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z');
}

/// Whether emphasis begins or ends within the word, of which this is a piece: "**b**old".
bool isPiece(std::string_view line, WordSpan word) {
    std::size_t before = word.start;
    while (before > 0 && isEmphasisSign(line[before - 1])) {
        --before;
    }
    std::size_t behind = word.end;
    while (behind < line.size() && isEmphasisSign(line[behind])) {
        ++behind;
    }
    return (before < word.start && before > 0 && isWordByte(line[before - 1])) ||
           (behind > word.end && behind < line.size() && isWordByte(line[behind]));
}

WordSpan withoutUnderscores(std::string_view line, WordSpan word) {
    while (word.start < word.end && line[word.start] == '_') {
        ++word.start;
    }
    while (word.end > word.start && line[word.end - 1] == '_') {
        --word.end;
    }
    return word;
}

bool isInDictionaries(std::string_view word) {
    const auto letters = static_cast<std::size_t>(
        std::count_if(word.begin(), word.end(), [](char c) { return (c & 0xC0) != 0x80; }));
    return letters > 1 && letters <= longestWord && base::isOfLetters(word) &&
           !(letters <= longestAbbreviation && base::isInCapitals(word));
}

}  // namespace

std::vector<TextRange> spellingWords(std::string_view line, const LineLook& look) {
    std::vector<TextRange> found;
    if (!hasWords(look.kind)) {
        return found;
    }
    std::vector<WordSpan> words;
    base::findWords(line, words);
    UnitCursor units(line);
    CoverCursor covered(passedOver(look));
    ChunkCursor chunks(line);
    for (const WordSpan& each : words) {
        const WordSpan word = withoutUnderscores(line, each);
        const std::size_t start = units.at(word.start);
        const TextRange range{start, units.at(word.end) - start};
        const bool isLeftOut = covered.covers(range) || chunks.isInAddress(word) ||
                               isPiece(line, word) || !isInDictionaries(word.in(line));
        if (!isLeftOut) {
            found.push_back(range);
        }
    }
    return found;
}

}  // namespace tessaly::app
