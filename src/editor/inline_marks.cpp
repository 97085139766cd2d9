// SPDX-License-Identifier: MIT
#include "editor/inline_marks.h"

#include <algorithm>

#include "base/utf8.h"
#include "grammar/char_classes.h"

namespace tessaly::editor {

namespace {

bool isSign(char c) {
    return c == '*' || c == '_';
}

/// Looks for emphasis: bold has two signs, italic one, with white space or nothing around it.
class Emphasis {
public:
    Emphasis(std::string_view text, std::size_t width) : _text(text), _width(width) {}

    std::vector<MarkedWords> all() const {
        std::vector<MarkedWords> result;
        for (std::size_t at = 0; at < _text.size();) {
            if (!opensAt(at)) {
                ++at;
                continue;
            }
            const Closing closing = closingFrom(at + _width);
            if (closing.found) {
                result.push_back({{at, closing.at + _width}, {at + _width, closing.at}});
            }
            // What does not close this one closes none that opens before the search ended.
            at = closing.at + _width;
        }
        return result;
    }

private:
    struct Closing {
        bool found;
        std::size_t at;  ///< or how far the search went
    };

    bool hasSignsAt(std::size_t at) const {
        return at + _width <= _text.size() && isSign(_text[at]) &&
               _text[at + _width - 1] == _text[at];
    }
    bool isGapBefore(std::size_t at) const {
        return at == 0 || base::isWhiteSpace(base::codePointBefore(_text, at).value);
    }
    bool isGapAt(std::size_t at) const {
        return at == _text.size() || base::isWhiteSpace(base::codePointAt(_text, at).value);
    }
    bool standsAlone() const { return _width == 1; }

    bool opensAt(std::size_t at) const {
        return hasSignsAt(at) && !isGapAt(at + _width) && (!standsAlone() || isGapBefore(at));
    }
    bool closesAt(std::size_t at) const {
        return hasSignsAt(at) && !isGapBefore(at) && (!standsAlone() || isGapAt(at + _width));
    }

    /// The last place in the first run of signs that has one.
    Closing closingFrom(std::size_t at) const;

    const std::string_view _text;
    const std::size_t _width;
};

Emphasis::Closing Emphasis::closingFrom(std::size_t at) const {
    while (at < _text.size()) {
        const std::size_t start = at;
        while (at < _text.size() && isSign(_text[at])) {
            ++at;
        }
        for (std::size_t place = at; place-- > start;) {
            if (closesAt(place)) {
                return {true, place};
            }
        }
        if (at == start) {
            const base::CodePoint next = base::codePointAt(_text, at);
            if (grammar::isLineTerminator(next.value)) {
                break;
            }
            at += next.size;
        }
    }
    return {false, at};
}

std::vector<MarkedWords> codeIn(std::string_view text) {
    std::vector<MarkedWords> result;
    constexpr std::size_t none = std::string_view::npos;
    std::size_t opening = none;
    for (std::size_t at = 0; at < text.size();) {
        const base::CodePoint next = base::codePointAt(text, at);
        if (grammar::isLineTerminator(next.value)) {
            opening = none;
        } else if (next.value == U'`' && opening != none) {
            result.push_back({{opening, at + 1}, {opening + 1, at}});
            opening = none;
        } else if (next.value == U'`') {
            opening = at;
        }
        at += next.size;
    }
    return result;
}

/// How many of the same character stand side by side before a place.
std::size_t runBefore(std::string_view text, std::size_t end) {
    const std::size_t before =
        end == 0 ? 0 : text.substr(0, end).find_last_not_of(text[end - 1]) + 1;
    return end - before;
}

std::size_t runAt(std::string_view text, std::size_t start) {
    return std::min(text.find_first_not_of(text[start], start), text.size()) - start;
}

}  // namespace

std::vector<MarkedWords> findMarkedWords(MarkAction action, std::string_view text) {
    switch (action) {
        case MarkAction::bold: return Emphasis(text, 2).all();
        case MarkAction::italic: return Emphasis(text, 1).all();
        case MarkAction::inlineCode: return codeIn(text);
        default: return {};
    }
}

bool areMarksAround(MarkAction action, std::string_view text, ByteSpan words) {
    if (words.start == 0 || words.end == text.size() || text[words.start - 1] != text[words.end]) {
        return false;
    }
    const char sign = text[words.end];
    const std::size_t run = std::min(runBefore(text, words.start), runAt(text, words.end));
    switch (action) {
        case MarkAction::bold: return isSign(sign) && run >= 2;
        case MarkAction::italic: return isSign(sign) && run % 2 == 1;
        case MarkAction::inlineCode: return sign == '`';
        default: return false;
    }
}

}  // namespace tessaly::editor
