// SPDX-License-Identifier: MIT
#include "editor/inline_command.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "base/enum_names.h"
#include "base/graphemes.h"
#include "base/log.h"
#include "base/utf8.h"
#include "editor/editor_commands.h"
#include "editor/inline_marks.h"
#include "editor/line_words.h"
#include "editor/mark_records.h"
#include "editor/selected_lines.h"
#include "editor/splices.h"

namespace tessaly::editor {

namespace {

struct Marks {
    std::string opening;
    std::string closing;
};

/// What a template has around the group of the words, the last one with something behind it.
Marks marksOf(std::string_view applyTemplate) {
    const std::size_t last = applyTemplate.find_last_not_of("$0123456789");
    const std::size_t words = applyTemplate.rfind('$', last);
    const std::size_t before = applyTemplate.substr(0, words).rfind('$');
    const std::size_t opening = before == std::string_view::npos ? 0 : before + 2;
    return {std::string(applyTemplate.substr(opening, words - opening)),
            std::string(applyTemplate.substr(words + 2, last - words - 1))};
}

ByteSpan within(ByteSpan span, ByteSpan limits) {
    const std::size_t start = std::clamp(span.start, limits.start, limits.end);
    return {start, std::clamp(span.end, start, limits.end)};
}

/// The last border between user-perceived characters up to a place.
std::size_t borderUpTo(std::string_view text, std::size_t place) {
    const ByteSpan line = linesTouched(text, {place, place}).front();
    return line.start + base::cutToBytes(line.in(text), place - line.start).size();
}

/// A mark between a letter and its accent would take the accent: a selection that ends within a
/// user-perceived character takes all of it, and a cursor there stands before it.
ByteSpan ofWholeCharacters(std::string_view text, ByteSpan selected) {
    const std::size_t start = borderUpTo(text, selected.start);
    if (selected.start == selected.end) {
        return {start, start};
    }
    const std::size_t end = borderUpTo(text, selected.end);
    const bool isWhole = end == selected.end;
    return {start, isWhole ? end : end + base::firstGraphemes(text.substr(end), 1).size()};
}

/// One selected line, without its break. All places are of the text.
class Line {
public:
    Line(std::string_view text, ByteSpan line) : _span(withoutReturn(text, line)), _text(text) {}

    ByteSpan span() const { return _span; }
    std::string_view bytes() const { return _span.in(_text); }
    bool isBlank() const { return editor::isBlank(bytes()); }
    ByteSpan words() const {
        const ByteSpan words = wordsIn(bytes());
        return {_span.start + words.start, _span.start + words.end};
    }

private:
    const ByteSpan _span;
    const std::string_view _text;
};

class InlineCommand {
public:
    InlineCommand(const MarkRecord& record, MarkAction action, std::string_view text,
                  ByteSpan selected)
        : _record(record),
          _action(action),
          _text(text),
          _selected(selected),
          _marks(marksOf(record.rules.applyTemplate)) {}

    std::optional<Edit> atCursor();
    std::optional<Edit> onWords();

private:
    bool isExcluded(const Line& line) const {
        return _record.rules.exclusionPattern != nullptr && isHeading(line.bytes());
    }
    void changeWords(const Line& line);
    ByteSpan withoutPrefix(const Line& line, ByteSpan part);
    bool takeMarksOff(const Line& line, ByteSpan words);
    void wrap(ByteSpan words);
    Edit editOfWord(ByteSpan word);
    Edit editSelecting(Side start, Side end) const;

    const MarkRecord& _record;
    const MarkAction _action;
    const std::string_view _text;
    const ByteSpan _selected;
    const Marks _marks;
    Splices _splices;
    bool _hasOnlyHeadings = true;
};

std::optional<Edit> InlineCommand::atCursor() {
    const Line line(_text, linesTouched(_text, _selected).front());
    if (isExcluded(line)) {
        return std::nullopt;
    }
    const ByteSpan limits{line.words().start, line.span().end};
    const ByteSpan cursor = within(_selected, limits);
    if (_action == MarkAction::link) {
        const std::size_t location = base::utf16Length(_text.substr(0, cursor.start));
        if (const auto word = selectedWord(_text, location)) {
            return editOfWord(within(bytesOf(_text, *word), limits));
        }
    }
    if (takeMarksOff(line, cursor)) {
        return editSelecting(Side::behind, Side::behind);
    }
    _splices = {{cursor.start, 0, _marks.opening + _marks.closing}};
    const std::size_t between =
        locationAfter(_text, _splices, cursor.start, Side::before) + _marks.opening.size();
    return editOf(_text, _splices, {between, 0});
}

std::optional<Edit> InlineCommand::onWords() {
    const auto lines = linesTouched(_text, _selected);
    for (const ByteSpan line : lines) {
        changeWords(Line(_text, line));
    }
    if (!_splices.empty()) {
        // Marks around all that was selected stay outside, so that others can follow inside them.
        const bool isExact = _splices.front().at == _selected.start &&
                             _splices.back().at == _selected.end && _splices.size() == 2;
        return isExact ? editSelecting(Side::behind, Side::before)
                       : editSelecting(Side::before, Side::behind);
    }
    if (!_hasOnlyHeadings) {
        base::log("Could not insert mark ", base::rawValue(_action));
    }
    return std::nullopt;
}

void InlineCommand::changeWords(const Line& line) {
    if (isExcluded(line)) {
        return;
    }
    _hasOnlyHeadings = false;
    if (line.isBlank()) {
        return;
    }
    const ByteSpan part = within(_selected, line.span());
    const ByteSpan words =
        withoutBlanks(_text, _record.rules.stripPattern != nullptr ? withoutPrefix(line, part)
                                                                   : within(part, line.words()));
    if (words.start != words.end && !takeMarksOff(line, words)) {
        wrap(words);
    }
}

/// What is left of the selected part of a line when its prefix is taken off.
ByteSpan InlineCommand::withoutPrefix(const Line& line, ByteSpan part) {
    if (!isBlank(ByteSpan{line.span().start, part.start}.in(_text))) {
        return part;
    }
    const std::size_t length = prefixEnd(part.in(_text));
    const ByteSpan rest{part.start + length, part.end};
    if (length != 0 && !isBlank(rest.in(_text))) {
        _splices.push_back({part.start, length, ""});
    }
    return rest;
}

/// Whether there were any, in the words or right around them.
bool InlineCommand::takeMarksOff(const Line& line, ByteSpan words) {
    const auto takeOff = [this](std::size_t start, std::size_t end) {
        _splices.push_back({start, end - start, ""});
    };
    const auto marked = findMarkedWords(_action, words.in(_text));
    for (const MarkedWords& found : marked) {
        takeOff(words.start + found.whole.start, words.start + found.words.start);
        takeOff(words.start + found.words.end, words.start + found.whole.end);
    }
    if (!marked.empty()) {
        return true;
    }
    const std::size_t offset = line.span().start;
    if (!areMarksAround(_action, line.bytes(), {words.start - offset, words.end - offset})) {
        return false;
    }
    takeOff(words.start - _marks.opening.size(), words.start);
    takeOff(words.end, words.end + _marks.closing.size());
    return true;
}

void InlineCommand::wrap(ByteSpan words) {
    _splices.push_back({words.start, 0, _marks.opening});
    _splices.push_back({words.end, 0, _marks.closing});
}

/// A link of a word, with the cursor where its address goes: before the last sign of the closing.
Edit InlineCommand::editOfWord(ByteSpan word) {
    wrap(word);
    const std::size_t behind = locationAfter(_text, _splices, word.end, Side::behind);
    return editOf(_text, _splices, {behind - 1, 0});
}

Edit InlineCommand::editSelecting(Side start, Side end) const {
    const std::size_t from = locationAfter(_text, _splices, _selected.start, start);
    const std::size_t to = locationAfter(_text, _splices, _selected.end, end);
    return editOf(_text, _splices, {from, to - from});
}

}  // namespace

std::optional<Edit> applyInline(const MarkRecord& record, MarkAction action, std::string_view text,
                                base::TextRange selection) {
    const ByteSpan selected = ofWholeCharacters(text, bytesOf(text, selection));
    InlineCommand command(record, action, text, selected);
    return selection.length == 0 ? command.atCursor() : command.onWords();
}

}  // namespace tessaly::editor
