// SPDX-License-Identifier: MIT
#include "grammar/mark_finder.h"

#include "base/utf8.h"
#include "grammar/char_classes.h"
#include "grammar/line_parts.h"

namespace tessaly::grammar {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

/// Two digits of `text` as a number; -1 when they are none.
int pair(std::string_view text, std::size_t at) {
    return isDigit(text[at]) && isDigit(text[at + 1]) ? (text[at] - '0') * 10 + text[at + 1] - '0'
                                                      : -1;
}

bool isMeridiem(std::string_view text) {
    return text.size() >= 2 && std::string_view("aApP").find(text[0]) != std::string_view::npos &&
           (text[1] == 'm' || text[1] == 'M');
}

}  // namespace

bool startsWithDate(std::string_view text) {
    if (text.size() < tagDateLength || pair(text, 0) < 0 || pair(text, 2) < 0 || text[4] != '-' ||
        text[7] != '-') {
        return false;
    }
    const int month = pair(text, 5);
    const int day = pair(text, 8);
    return month >= 1 && month <= 12 && day >= 1 && day <= 31;
}

std::size_t tagTimeLength(std::string_view text) {
    constexpr std::size_t bare = 5;
    if (text.size() < bare || text[2] != ':') {
        return 0;
    }
    const int hour = pair(text, 0);
    const int minute = pair(text, 3);
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59) {
        return 0;
    }
    const std::string_view behind = text.substr(bare);
    if (isMeridiem(behind)) {
        return bare + 2;
    }
    return behind.starts_with(' ') && isMeridiem(behind.substr(1)) ? bare + 3 : bare;
}

void MarkFinder::sign(std::size_t place) {
    switch (_line[place]) {
        case '#': tag(place, MarkKind::hashtag, _hashtagResume); break;
        case '<': date(place, MarkKind::backLink); break;
        case '>': date(place, MarkKind::scheduleTag); break;
        default:
            date(place, MarkKind::plainDate);
            completion(place);
            tag(place, MarkKind::mention, _mentionResume);
    }
}

void MarkFinder::tag(std::size_t place, MarkKind kind, std::size_t& resume) {
    if (place < resume || !mayPrecedeTag(place)) {
        return;
    }
    const std::size_t name = place + 1;
    if (isOnlyDigitsAndPunctuation(name)) {
        return;
    }
    std::size_t end = nameEnd(name);
    if (end == name) {
        return;
    }
    if (end < _line.size() && _line[end] == '(') {
        const std::size_t close = argumentEnd(end + 1);
        end = close == none ? end : close;
    }
    add(kind, place, end);
    resume = end;
}

void MarkFinder::date(std::size_t place, MarkKind kind) {
    if (startsWithDate(_line.substr(place + 1))) {
        add(kind, withSpaceBefore(place), place + 1 + tagDateLength);
    }
}

void MarkFinder::completion(std::size_t place) {
    const std::string_view text = _line.substr(place);
    if (!text.starts_with(doneOpener) || !startsWithDate(text.substr(doneOpener.size()))) {
        return;
    }
    std::size_t end = doneOpener.size() + tagDateLength;
    if (text.size() > end && text[end] == ' ') {
        const std::size_t time = tagTimeLength(text.substr(end + 1));
        end += time == 0 ? 0 : time + 1;
    }
    if (text.size() > end && text[end] == ')') {
        add(MarkKind::doneTag, withSpaceBefore(place), place + end + 1);
    }
}

bool MarkFinder::mayPrecedeTag(std::size_t place) const {
    if (place == 0) {
        return true;
    }
    const auto byte = static_cast<unsigned char>(_line[place - 1]);
    const char32_t before = byte < 0x80 ? byte : base::codePointBefore(_line, place).value;
    return (classesOf(before) & char_class::beforeTag) != 0;
}

/// Whether the text from `place` is digits and punctuation, at least one, up to white space or the
/// line's end.
bool MarkFinder::isOnlyDigitsAndPunctuation(std::size_t place) {
    Known& known = _digitsAndPunctuation;
    if (place < known.from || place >= known.to) {
        std::size_t end = place;
        bool closed = true;
        while (end < _line.size()) {
            const base::CodePoint c = base::codePointAt(_line, end);
            const std::uint8_t classes = classesOf(c.value);
            if ((classes & (char_class::punctuation | char_class::digit)) == 0) {
                closed = (classes & char_class::space) != 0;
                break;
            }
            end += c.size;
        }
        known = {place, end, closed ? std::size_t{1} : std::size_t{0}};
    }
    return known.from != known.to && known.answer == 1;
}

std::size_t MarkFinder::nameEnd(std::size_t place) const {
    while (place < _line.size()) {
        const base::CodePoint c = base::codePointAt(_line, place);
        if (!isNameClass(classesOf(c.value))) {
            break;
        }
        place += c.size;
    }
    return place;
}

/// Behind the first ")" from `place`; `none` when the line, or a line terminator in it, ends
/// before.
std::size_t MarkFinder::argumentEnd(std::size_t place) {
    Known& known = _argument;
    if (place < known.from || place >= known.to) {
        std::size_t end = place;
        std::size_t answer = none;
        while (end < _line.size()) {
            const base::CodePoint c = base::codePointAt(_line, end);
            end += c.size;
            if (c.value == ')') {
                answer = end;
                break;
            }
            if (isLineTerminator(c.value)) {
                break;
            }
        }
        // An empty stretch would say that nothing is known, at the line's end.
        known = {place, end, answer};
    }
    return known.answer;
}

std::size_t MarkFinder::withSpaceBefore(std::size_t place) const {
    if (place == 0) {
        return place;
    }
    const base::CodePoint before = base::codePointBefore(_line, place);
    return base::isWhiteSpace(before.value) ? place - before.size : place;
}

void MarkFinder::add(MarkKind kind, std::size_t start, std::size_t end) {
    _marks.push_back({kind, static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end)});
}

}  // namespace tessaly::grammar
