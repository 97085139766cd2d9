// SPDX-License-Identifier: MIT
#include "search/excerpt.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include "base/character_iterator.h"
#include "base/utf8.h"

namespace tessaly::search {

namespace {

constexpr std::size_t mostCharacters = 60;
constexpr std::size_t mostBeforeMatch = 20;
constexpr std::string_view ellipsis = "\u2026";
constexpr std::size_t mostWithOneCut = mostCharacters - 1;
constexpr std::size_t mostWithTwoCuts = mostCharacters - 2;

/// Scripts whose letters stand alone, for which ICU need not be asked. None of these stretches
/// holds a combining mark, an invisible character or a part of a syllable.
struct Letters {
    char32_t first;
    char32_t last;
};
constexpr std::array<Letters, 6> letters{{{0x00C0, 0x02FF},
                                          {0x0370, 0x0482},
                                          {0x048A, 0x058F},
                                          {0x3041, 0x3096},
                                          {0x4E00, 0x9FFF},
                                          {0xAC00, 0xD7A3}}};

/// Whether a user-perceived character begins and ends at the code point's borders, where the same
/// is true of its neighbours.
bool standsAlone(char32_t c) {
    if (c < 0x80) {
        return c != '\r' && c != '\n';
    }
    for (const Letters& some : letters) {
        if (c <= some.last && c >= some.first) {
            return true;
        }
    }
    const auto sort = u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_GRAPHEME_CLUSTER_BREAK);
    return sort == U_GCB_OTHER || sort == U_GCB_CONTROL;
}

/// The user-perceived characters of a line, of which only those near by are looked at. ICU is asked
/// where code points may join; without its data every code point counts as a character.
class Characters {
public:
    explicit Characters(std::string_view line) : _line(line) {}

    /// The border behind `from`, which must be one itself, below the line's size.
    std::size_t after(std::size_t from) {
        if (isPlain(from) && (from + 1 == _line.size() || isPlain(from + 1))) {
            return from + 1;
        }
        const base::CodePoint c = base::codePointAt(_line, from);
        const std::size_t next = from + c.size;
        if (next == _line.size() ||
            (standsAlone(c.value) && standsAlone(base::codePointAt(_line, next).value)) ||
            !open()) {
            return next;
        }
        return static_cast<std::size_t>(ubrk_following(_iterator, static_cast<std::int32_t>(from)));
    }

    /// The border before `from`, which must be one itself, above 0.
    std::size_t before(std::size_t from) {
        if (isPlain(from - 1) && (from == 1 || isPlain(from - 2))) {
            return from - 1;
        }
        const base::CodePoint c = base::codePointBefore(_line, from);
        const std::size_t start = from - c.size;
        if (start == 0 ||
            (standsAlone(c.value) && standsAlone(base::codePointBefore(_line, start).value)) ||
            !open()) {
            return start;
        }
        return static_cast<std::size_t>(ubrk_preceding(_iterator, static_cast<std::int32_t>(from)));
    }

    /// `stretch`, whose ends lie between code points, with the whole of the characters at its ends.
    Stretch widened(Stretch stretch) {
        if (!isBorder(stretch.start)) {
            const auto start = static_cast<std::int32_t>(stretch.start);
            stretch.start = static_cast<std::size_t>(ubrk_preceding(_iterator, start));
        }
        if (!isBorder(stretch.end)) {
            const auto end = static_cast<std::int32_t>(stretch.end);
            stretch.end = static_cast<std::size_t>(ubrk_following(_iterator, end));
        }
        return stretch;
    }

private:
    bool isPlain(std::size_t at) const { return _line[at] >= ' ' && _line[at] <= '~'; }

    bool isBorder(std::size_t at) {
        if (at == 0 || at == _line.size() ||
            (standsAlone(base::codePointBefore(_line, at).value) &&
             standsAlone(base::codePointAt(_line, at).value))) {
            return true;
        }
        return !open() || ubrk_isBoundary(_iterator, static_cast<std::int32_t>(at)) != 0;
    }

    /// False: there is no iterator.
    bool open() {
        if (_iterator == nullptr) {
            _iterator = base::characterIterator(_line);
        }
        return _iterator != nullptr;
    }

    std::string_view _line;
    UBreakIterator* _iterator = nullptr;
};

/// Chooses what is shown of a line, between `limits`.
class Window {
public:
    Window(Characters& characters, Stretch limits) : _characters(characters), _limits(limits) {}

    Stretch around(Stretch match) {
        if (_limits.end - _limits.start <= mostCharacters) {
            return _limits;
        }
        const std::size_t room = mostWithTwoCuts - countOf(match, mostWithTwoCuts);
        const std::size_t start = back(match.start, std::min(mostBeforeMatch, room));
        if (start == _limits.start) {
            return beginning();
        }
        const std::size_t end = ahead(start, mostWithTwoCuts);
        return ahead(end, 1) == _limits.end ? ending() : Stretch{start, end};
    }

private:
    Stretch beginning() {
        const std::size_t end = ahead(_limits.start, mostWithOneCut);
        return {_limits.start, ahead(end, 1) == _limits.end ? _limits.end : end};
    }

    Stretch ending() {
        const std::size_t start = back(_limits.end, mostWithOneCut);
        return {back(start, 1) == _limits.start ? _limits.start : start, _limits.end};
    }

    std::size_t countOf(Stretch stretch, std::size_t most) {
        std::size_t count = 0;
        for (std::size_t at = stretch.start; at < stretch.end && count < most; ++count) {
            at = _characters.after(at);
        }
        return count;
    }

    std::size_t ahead(std::size_t at, std::size_t count) {
        for (; at < _limits.end && count > 0; --count) {
            at = _characters.after(at);
        }
        return at;
    }

    std::size_t back(std::size_t at, std::size_t count) {
        for (; at > _limits.start && count > 0; --count) {
            at = _characters.before(at);
        }
        return at;
    }

    Characters& _characters;
    Stretch _limits;
};

Stretch withoutBlankEnds(std::string_view line) {
    const std::string_view text = base::trimmed(line);
    const auto start = text.empty() ? 0 : static_cast<std::size_t>(text.data() - line.data());
    return {start, start + text.size()};
}

Excerpt cut(std::string_view line, Stretch limits, Stretch shown, Stretch match) {
    Excerpt excerpt;
    if (shown.start > limits.start) {
        excerpt.text += ellipsis;
    }
    excerpt.text += line.substr(shown.start, shown.end - shown.start);
    if (match.end > match.start) {
        const std::string_view lead = line.substr(shown.start, match.start - shown.start);
        const std::size_t end = std::min(match.end, shown.end);
        excerpt.highlight = {base::utf16Length(lead) + (shown.start > limits.start ? 1 : 0),
                             base::utf16Length(line.substr(match.start, end - match.start))};
    }
    if (shown.end < limits.end) {
        excerpt.text += ellipsis;
    }
    return excerpt;
}

}  // namespace

Excerpt excerptOf(std::string_view line, Stretch match) {
    Characters characters(line);
    // A mark may stand on a blank at the line's end.
    const Stretch limits = characters.widened(withoutBlankEnds(line));
    match = characters.widened(match);
    match.start = std::clamp(match.start, limits.start, limits.end);
    match.end = std::clamp(match.end, match.start, limits.end);
    if (match.start == match.end) {
        match = {limits.start, limits.start};
    }
    return cut(line, limits, Window(characters, limits).around(match), match);
}

}  // namespace tessaly::search
