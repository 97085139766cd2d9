// SPDX-License-Identifier: MIT
#include "app/completion.h"

#include <algorithm>
#include <utility>

#include "base/utf8.h"
#include "grammar/date_tags.h"
#include "grammar/line_scanner.h"
#include "grammar/tags.h"
#include "search/folded_text.h"
#include "tasks/repeats.h"

namespace tessaly::app {

namespace {

using base::TextRange;
using base::utf16Length;

constexpr std::string_view openingBrackets = "[[";
constexpr std::string_view someDay = "2019-03-05";
constexpr std::size_t mostDayBytes = 24;

/// What may stand behind the caret when the user has written on: it is code or an address that is
/// being written, where one of these would end it.
constexpr std::string_view possibleEnds[] = {"", ")", " `"};

/// A line at its caret, in bytes.
struct CaretLine {
    std::string_view head;
    std::string_view tail;
    std::size_t caret;  ///< in UTF-16 units

    std::size_t unitAt(std::size_t byte) const { return utf16Length(head.substr(0, byte)); }
    TextRange rangeFrom(std::size_t byte) const {
        const std::size_t start = unitAt(byte);
        return {start, caret - start};
    }
};

LineLook lookOf(const std::string& line, const LineContext& context) {
    return lineLook(line, context.before, context.markers);
}

const LookSpan* spanAt(const LineLook& look, SpanKind kind, TextRange range) {
    const auto found = std::find_if(look.spans.begin(), look.spans.end(), [&](const auto& span) {
        return span.kind == kind && span.range == range;
    });
    return found == look.spans.end() ? nullptr : &*found;
}

/// Where the word begins that ends in the text.
std::size_t lastWordStart(std::string_view text) {
    std::size_t start = text.size();
    while (start > 0) {
        const base::CodePoint before = base::codePointBefore(text, start);
        if (base::isWhiteSpace(before.value)) {
            break;
        }
        start -= before.size;
    }
    return start;
}

/// Whether the text is read as such, with whatever end may come behind it.
template <class IsRead>
bool isReadWithAnyEnd(const std::string& upTo, std::string_view behind, const LineContext& context,
                      IsRead isRead) {
    return std::all_of(std::begin(possibleEnds), std::end(possibleEnds), [&](auto end) {
        return isRead(lookOf(upTo + std::string(end) + std::string(behind), context));
    });
}

std::optional<CompletionPlace> titlePlace(const CaretLine& line, const LineContext& context) {
    const std::size_t open = line.head.rfind(openingBrackets);
    if (open == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t start = open + openingBrackets.size();
    const std::string_view typed = line.head.substr(start);
    const std::size_t bracket = line.tail.find_first_of("[]");
    const bool isInsideOfTitle = bracket != std::string_view::npos && bracket > 0 &&
                                 line.tail.substr(bracket).starts_with("]]");
    if (typed.find_first_of("[]") != std::string_view::npos || isInsideOfTitle) {
        return std::nullopt;
    }
    const std::string_view behind =
        line.tail.substr(std::min(line.tail.find_first_not_of(']'), line.tail.size()));
    const TextRange range = line.rangeFrom(start);
    const bool isRead =
        isReadWithAnyEnd(std::string(line.head) + "x]]", behind, context, [&](const auto& look) {
            return spanAt(look, SpanKind::noteLink, {range.location, range.length + 1});
        });
    return isRead
               ? std::optional(CompletionPlace{CompletionKind::noteTitle, range, std::string(typed),
                                               !base::trimmed(typed).empty()})
               : std::nullopt;
}

/// Whether a tag stands there that ends where it is typed to, by the grammar.
bool isTag(CompletionKind kind, const std::string& tag) {
    return kind == CompletionKind::hashtag ? !grammar::hashtagsOf(tag).empty()
                                           : !grammar::mentionsOf(tag).empty();
}

std::optional<CompletionPlace> tagPlace(const CaretLine& line, const LineContext& context) {
    const std::size_t wordStart = lastWordStart(line.head);
    const std::size_t sign = line.head.find_last_of("#@");
    if (sign == std::string_view::npos || sign < wordStart) {
        return std::nullopt;
    }
    const bool isHashtag = line.head[sign] == '#';
    const SpanKind span = isHashtag ? SpanKind::hashtag : SpanKind::mention;
    const TextRange range = line.rangeFrom(sign);
    const bool isRead = isReadWithAnyEnd(
        std::string(line.head) + "x", line.tail, context, [&](const LineLook& look) {
            return spanAt(look, span, {range.location, range.length + 1});
        });
    if (!isRead) {
        return std::nullopt;
    }
    CompletionPlace place{isHashtag ? CompletionKind::hashtag : CompletionKind::mention, range,
                          std::string(line.head.substr(sign + 1))};
    place.isWord =
        !place.typed.ends_with('/') && isTag(place.kind, std::string(line.head.substr(sign)));
    return place;
}

/// Whether it may be, or become, what the day's field takes. A comparison or an arrow is none.
bool mayBecomeDay(std::string_view typed) {
    return typed.size() <= mostDayBytes && !base::dayFromTagText(typed) &&
           std::all_of(typed.begin(), typed.end(), [](char c) {
               return static_cast<unsigned char>(c) >= 0x80 || (c >= '0' && c <= '9') ||
                      (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' || c == '-' ||
                      c == '.';
           });
}

/// Whether no other schedule tag stands in the line.
bool hasItAlone(const LineLook& look, TextRange range) {
    return look.kind != LineLook::Kind::heading && spanAt(look, SpanKind::scheduleTag, range) &&
           std::count_if(look.spans.begin(), look.spans.end(), [](const LookSpan& span) {
               return span.kind == SpanKind::scheduleTag;
           }) == 1;
}

std::optional<CompletionPlace> dayPlace(const CaretLine& line, const LineContext& context) {
    const std::size_t sign = lastWordStart(line.head);
    const std::string_view word = line.head.substr(sign);
    const std::string_view before = line.head.substr(0, sign);
    // The sign of a quote stands at the line's start, or behind another.
    const bool isQuote = before.find_first_not_of(" \t>") == std::string_view::npos;
    const bool isAtWordEnd =
        line.tail.empty() || base::isWhiteSpace(base::codePointAt(line.tail, 0).value);
    if (!word.starts_with('>') || isQuote || !isAtWordEnd || !mayBecomeDay(word.substr(1))) {
        return std::nullopt;
    }
    const TextRange range = line.rangeFrom(sign);
    const bool isRead =
        isReadWithAnyEnd(std::string(before) + ">" + std::string(someDay), line.tail, context,
                         [&](const LineLook& look) {
                             return hasItAlone(look, {range.location, 1 + someDay.size()});
                         });
    return isRead ? std::optional(CompletionPlace{CompletionKind::day, range,
                                                  std::string(word.substr(1)), word.size() > 1})
                  : std::nullopt;
}

/// What is typed of a tag already stays in the user's spelling.
std::string tagInsertion(const CompletionPlace& place, std::string_view word) {
    const std::string typed = search::folded(place.typed);
    const std::string tag = word.starts_with(typed)
                                ? place.typed + std::string(word.substr(typed.size()))
                                : std::string(word);
    return (place.kind == CompletionKind::hashtag ? "#" : "@") + tag;
}

editor::Edit titleEdit(std::string_view line, const CompletionPlace& place, std::string_view word) {
    const std::string_view tail = line.substr(base::byteOffset(line, place.range.end()));
    const std::size_t there = tail.starts_with("]]") ? 2 : tail.starts_with("]") ? 1 : 0;
    const std::string brackets(2 - there, ']');
    return {place.range,
            std::string(word) + brackets,
            {place.range.location + utf16Length(word) + 2, 0}};
}

std::string insertion(const CompletionPlace& place, std::string_view word) {
    return place.kind == CompletionKind::day ? ">" + std::string(word) : tagInsertion(place, word);
}

}  // namespace

std::optional<CompletionPlace> completionPlace(std::string_view line, std::size_t caret,
                                               const LineContext& context) {
    const std::size_t byte = base::byteOffset(line, caret);
    const CaretLine parts{line.substr(0, byte), line.substr(byte), caret};
    auto title = titlePlace(parts, context);
    const std::size_t wordStart = lastWordStart(parts.head);
    // Brackets that were opened long ago may never have been meant to close.
    if (title && parts.unitAt(wordStart) <= title->range.location) {
        return title;
    }
    auto other = tagPlace(parts, context);
    other = other ? other : dayPlace(parts, context);
    return other ? other : title;
}

editor::Edit completionEdit(std::string_view line, const CompletionPlace& place,
                            std::string_view word) {
    if (place.kind == CompletionKind::noteTitle) {
        return titleEdit(line, place, word);
    }
    std::string text = insertion(place, word);
    const TextRange caret{place.range.location + utf16Length(text), 0};
    return {place.range, std::move(text), caret};
}

std::vector<NextMark> nextMarks(std::string_view line, const CompletionPlace& place,
                                const grammar::MarkerSettings& markers,
                                const MarkContext& context) {
    if (place.kind != CompletionKind::mention || place.typed.empty()) {
        return {};
    }
    const grammar::TodoType type = grammar::classifyLine(line, markers).type;
    std::vector<NextMark> marks;
    if (type == grammar::TodoType::done && !grammar::DateTags::findDoneTag(line)) {
        const std::string now =
            grammar::writeTagDate(context.now, grammar::TagTime::timeAndMarker, context.hourCycle);
        marks.push_back({"done(" + now + ")", {now.size() + 6, 0}});
    }
    const bool isOfDay = context.noteType == base::NoteType::calendar;
    if (type == grammar::TodoType::open && isOfDay && !tasks::findRepeatTag(line)) {
        // How many repeats there are is for the user to say.
        marks.push_back({"repeat(1/5)", {9, 1}});
    }
    const std::string typed = search::folded(place.typed);
    marks.erase(std::remove_if(marks.begin(), marks.end(),
                               [&](const NextMark& mark) { return !mark.word.starts_with(typed); }),
                marks.end());
    return marks;
}

editor::Edit markEdit(std::string_view line, const CompletionPlace& place, const NextMark& mark) {
    editor::Edit edit = completionEdit(line, place, mark.word);
    edit.replacement = "@" + mark.word;  // in its one spelling
    edit.selection = {place.range.location + 1 + mark.selection.location, mark.selection.length};
    return edit;
}

}  // namespace tessaly::app
