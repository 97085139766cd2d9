// SPDX-License-Identifier: MIT
#include "cli/marked_text.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <fmt/format.h>

#include "base/localisation.h"
#include "base/utf8.h"
#include "cli/json_records.h"
#include "cli/malformed.h"
#include "editor/edit.h"

namespace tessaly::cli {

using base::Failure;
using base::Result;
using base::TextRange;
using base::tr;

namespace {

/// Bytes from the text's start.
struct ByteRange {
    std::size_t start = 0;
    std::size_t end = 0;
};

std::optional<std::size_t> numberFrom(std::string_view text) {
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end ? std::optional{number} : std::nullopt;
}

/// Two numbers around a separator.
std::optional<std::pair<std::size_t, std::size_t>> pairFrom(std::string_view text, char separator) {
    const std::size_t middle = text.find(separator);
    if (middle == text.npos) {
        return std::nullopt;
    }
    const auto first = numberFrom(text.substr(0, middle));
    const auto second = numberFrom(text.substr(middle + 1));
    return first && second ? std::optional{std::pair{*first, *second}} : std::nullopt;
}

std::size_t unitsAt(std::string_view text, std::size_t byte, TextUnit unit) {
    return unit == TextUnit::bytes ? byte : base::utf16Length(text.substr(0, byte));
}

bool isInsideCharacter(std::string_view text, std::size_t byte) {
    return byte < text.size() && (static_cast<unsigned char>(text[byte]) & 0xC0U) == 0x80U;
}

Result<std::size_t> byteAt(std::string_view text, std::size_t place, TextUnit unit) {
    const std::size_t byte =
        unit == TextUnit::bytes ? std::min(place, text.size()) : base::byteOffset(text, place);
    const std::size_t reached = unitsAt(text, byte, unit);
    if (byte == text.size() && reached < place) {
        return malformed(tr("the selection goes past the end of the text"));
    }
    if (reached != place || isInsideCharacter(text, byte)) {
        return malformed(tr("the selection ends within a character"));
    }
    return byte;
}

Result<ByteRange> spanOf(std::string_view text, const TextRange& range, TextUnit unit) {
    const auto start = byteAt(text, range.location, unit);
    if (!start) {
        return start.failure();
    }
    const bool overflows = range.length > text.size();
    const auto end = byteAt(text, overflows ? text.size() + 1 : range.end(), unit);
    return end ? Result<ByteRange>{ByteRange{*start, *end}} : end.failure();
}

/// From the start of the first line to the end of the last one, before its line break; behind that
/// of a last line that is empty, as the selection would not touch it else.
Result<ByteRange> spanOf(std::string_view text, const LineNumbers& lines) {
    ByteRange span;
    std::size_t start = 0;
    for (std::size_t number = 1;; ++number) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        if (number == lines.first) {
            span.start = start;
        }
        if (number == lines.last) {
            const bool hasReturn = end > start && end < text.size() && text[end - 1] == '\r';
            const std::size_t textEnd = hasReturn ? end - 1 : end;
            const bool isBehindOthers = textEnd == start && start > span.start;
            span.end = isBehindOthers ? std::min(end + 1, text.size()) : textEnd;
            return span;
        }
        if (end == text.size()) {
            return malformed(
                fmt::format(fmt::runtime(base::trPlural("the text has {} line",
                                                        "the text has {} lines", number)),
                            number));
        }
        start = end + 1;
    }
}

Result<ByteRange> spanOf(std::string_view text, const MarkPlace& place) {
    if (place.lines) {
        return spanOf(text, *place.lines);
    }
    return place.selection ? spanOf(text, *place.selection, place.unit)
                           : Result<ByteRange>{ByteRange{0, text.size()}};
}

TextRange rangeOf(std::string_view text, const ByteRange& span, TextUnit unit) {
    const std::size_t start = unitsAt(text, span.start, unit);
    return {start, unitsAt(text, span.end, unit) - start};
}

/// A range of UTF-16 units behind the byte-order mark of `text`.
ByteRange spanBehind(std::string_view text, std::size_t mark, const TextRange& range) {
    const std::string_view body = text.substr(mark);
    return {mark + base::byteOffset(body, range.location),
            mark + base::byteOffset(body, range.end())};
}

}  // namespace

std::optional<LineNumbers> lineNumbersFrom(std::string_view text) {
    const auto single = numberFrom(text);
    const auto pair = single ? std::optional{std::pair{*single, *single}} : pairFrom(text, '-');
    const bool isRange = pair && pair->first >= 1 && pair->first <= pair->second;
    return isRange ? std::optional{LineNumbers{pair->first, pair->second}} : std::nullopt;
}

std::optional<TextRange> selectionFrom(std::string_view text) {
    const auto pair = pairFrom(text, ',');
    return pair ? std::optional{TextRange{pair->first, pair->second}} : std::nullopt;
}

Result<MarkedText> markedText(editor::MarkAction action, std::string_view text,
                              const MarkPlace& place, const editor::MarkSettings& settings) {
    const std::string_view body = base::withoutByteOrderMark(text);
    const std::size_t mark = text.size() - body.size();
    auto span = spanOf(text, place);
    if (!span) {
        return span.failure();
    }
    const ByteRange inBody{std::max(span->start, mark) - mark, std::max(span->end, mark) - mark};
    const auto edit = editor::mark(action, body, rangeOf(body, inBody, TextUnit::utf16), settings);
    if (!edit) {
        return edit.failure();
    }
    if (!*edit) {
        return MarkedText{std::string{text}, rangeOf(text, *span, place.unit), std::nullopt};
    }
    MarkedText marked;
    marked.text = std::string{text.substr(0, mark)} + editor::edited(body, **edit);
    marked.edit = MarkedText::Change{
        rangeOf(text, spanBehind(text, mark, (*edit)->range), place.unit), (*edit)->replacement};
    marked.selection =
        rangeOf(marked.text, spanBehind(marked.text, mark, (*edit)->selection), place.unit);
    return marked;
}

JsonObject recordOf(const MarkedText& marked) {
    std::optional<JsonObject> edit;
    if (marked.edit) {
        edit.emplace();
        edit->add("range", recordOf(marked.edit->range))
            .add("replacement", marked.edit->replacement);
    }
    JsonObject object;
    object.add("text", marked.text)
        .add("selection", recordOf(marked.selection))
        .add("edit", std::move(edit));
    return object;
}

}  // namespace tessaly::cli
