// SPDX-License-Identifier: MIT
#include "editor/line_command.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/localisation.h"
#include "base/utf8.h"
#include "editor/numbering.h"
#include "editor/selected_lines.h"
#include "editor/selection_map.h"
#include "grammar/date_tags.h"
#include "grammar/line_parts.h"
#include "grammar/line_scanner.h"
#include "grammar/todo_helper.h"

namespace tessaly::editor {

namespace {

using base::Failure;
using base::Result;
using grammar::LineAction;

constexpr std::size_t longestPrefix = 20 * 1024;

/// Behind what the patterns may read of a line character by character: white space, marker, box,
/// and the white space of the text behind them.
std::size_t headEnd(std::string_view line) {
    std::size_t at = grammar::skipSpace(line, 0);
    auto marker = base::TodoCharacter::asterisk;
    const std::size_t hashes = std::min(line.find_first_not_of('#', at), line.size());
    at = std::max({at, hashes, grammar::signEnd(line, at, grammar::Quotes::yes, marker)});
    if (grammar::charAt(line, at) == ' ') {
        at = std::max(at + 1, grammar::boxAt(line, at + 1).end);
    }
    return grammar::skipSpace(line, at);
}

/// No pattern asks for more than what `headEnd` passes over, and all templates end in the group
/// that runs on from there. So the rest of a line, however long, need not be searched.
Result<std::string> rewritten(const LineAction& rules, std::string_view line) {
    const std::size_t head = headEnd(line);
    if (head > longestPrefix) {
        return Failure{Failure::Kind::tooLarge, base::tr("a line is too long for this command")};
    }
    return grammar::applied(rules, line.substr(0, head)).append(line.substr(head));
}

Result<std::string> withTemplate(LineAction rules, char sign, std::string_view with,
                                 std::string_view line) {
    std::string replacement = rules.applyTemplate;
    replacement.replace(replacement.find(sign), 1, with);
    rules.applyTemplate = replacement.c_str();
    return rewritten(rules, line);
}

bool hasSign(const LineAction& rules, char sign) {
    return rules.applyTemplate != nullptr &&
           std::string_view(rules.applyTemplate).find(sign) != std::string_view::npos;
}

using Rewriter = std::function<Result<std::string>(std::string_view line)>;

/// The number depends on the indentation, which shows when the line has been rewritten. Most items
/// follow the one before, so that this is done once.
Rewriter numberingRewriter(const LineAction& rules, Numbering numbering) {
    std::uint64_t guess = 1;
    return [&rules, numbering = std::move(numbering), guess](std::string_view line) mutable {
        auto result = withTemplate(rules, numberSign, std::to_string(guess), line);
        if (!result) {
            return result;
        }
        const auto number = numbering.next(indentationOf(*result));
        if (number != guess) {
            result = withTemplate(rules, numberSign, std::to_string(number), line);
        }
        guess = number + 1;
        numbering.pass(*result);
        return result;
    };
}

Rewriter rewriterOf(const MarkRecord& record, std::string_view textBefore,
                    const MarkSettings& settings) {
    if (record.state != nullptr) {
        return [&record](std::string_view line) { return grammar::applied(*record.state, line); };
    }
    if (hasSign(record.rules, numberSign)) {
        return numberingRewriter(record.rules, Numbering::before(textBefore, textBefore.size()));
    }
    const std::string prefix =
        grammar::TodoHelper::newTaskPrefix(settings.markers, settings.defaultTodoCharacter);
    if (prefix.front() == '-' && hasSign(record.rules, '*')) {
        return
            [&record](std::string_view line) { return withTemplate(record.rules, '*', "-", line); };
    }
    return [&record](std::string_view line) { return rewritten(record.rules, line); };
}

/// As `movedPlace`, where a task's completion tags may have gone from its content.
std::size_t movedInTask(std::string_view before, std::string_view after, std::size_t place) {
    const std::size_t contentStart = grammar::classifyLine(before, {}).contentStart;
    const std::string_view content = before.substr(contentStart);
    if (after.ends_with(content)) {
        return movedPlace(before, after, place);
    }
    std::vector<grammar::Mark> marks;
    grammar::findMarks(content, marks);
    std::size_t untagged = place;
    for (const grammar::Mark& mark : marks) {
        const std::size_t start = contentStart + mark.start;
        if (mark.kind == grammar::MarkKind::doneTag && start < place) {
            untagged -= std::min(place, contentStart + mark.end) - start;
        }
    }
    const std::string head(before.substr(0, contentStart));
    return movedPlace(head + grammar::DateTags::findAndRemoveDoneTag(content), after, untagged);
}

/// The lines, put together again, and where the selection's ends come to stand among them.
class Rewriting {
public:
    using Move = std::size_t (*)(std::string_view before, std::string_view after,
                                 std::size_t place);

    /// Spans are bytes of `text`; the lines follow each other from `start` on.
    Rewriting(std::string_view text, std::size_t start, ByteSpan selection, Move moving)
        : _text(text), _move(moving), _selection(selection), _copied(start) {}

    /// What is between this line and the one before it stays.
    void append(ByteSpan line, std::string_view after);

    const std::string& result() const { return _result; }
    ByteSpan selection() const { return _moved; }

private:
    /// The last line that begins before the place decides.
    void moveEnd(ByteSpan line, std::string_view after, std::size_t place,
                 std::size_t& moved) const;

    const std::string_view _text;
    const Move _move;
    const ByteSpan _selection;
    std::size_t _copied;
    std::string _result;
    ByteSpan _moved;
};

void Rewriting::append(ByteSpan line, std::string_view after) {
    _result += _text.substr(_copied, line.start - _copied);
    moveEnd(line, after, _selection.start, _moved.start);
    moveEnd(line, after, _selection.end, _moved.end);
    _result += after;
    _copied = line.end;
}

void Rewriting::moveEnd(ByteSpan line, std::string_view after, std::size_t place,
                        std::size_t& moved) const {
    if (place > line.end) {
        moved = _result.size() + after.size() + (place - line.end);
    } else if (place >= line.start) {
        moved = _result.size() + _move(line.in(_text), after, place - line.start);
    }
}

}  // namespace

Result<std::optional<Edit>> applyToLines(const MarkRecord& record, std::string_view text,
                                         ByteSpan selection, const MarkSettings& settings) {
    const auto lines = linesTouched(text, selection);
    const std::size_t start = lines.front().start;
    const ByteSpan whole{start, withoutReturn(text, lines.back()).end};
    const Rewriter rewriter = rewriterOf(record, text.substr(0, start), settings);
    const bool allBlank = isBlank(whole.in(text));
    Rewriting rewriting(text, start, selection, record.state ? movedInTask : movedPlace);
    for (const ByteSpan span : lines) {
        const ByteSpan line = withoutReturn(text, span);
        if (isBlank(line.in(text)) && !allBlank) {
            rewriting.append(line, line.in(text));
        } else if (const auto after = rewriter(line.in(text))) {
            rewriting.append(line, *after);
        } else {
            return after.failure();
        }
    }
    if (rewriting.result() == whole.in(text)) {
        return std::optional<Edit>();
    }
    // What is behind the lines may be selected, too: half a line break, or the last one.
    const std::size_t behind = std::max(selection.end, whole.end) - whole.end;
    const std::string result = rewriting.result() + std::string(text.substr(whole.end, behind));
    Edit edit{unitsOf(text, whole), rewriting.result(), unitsOf(result, rewriting.selection())};
    edit.selection.location += edit.range.location;
    return std::optional(std::move(edit));
}

}  // namespace tessaly::editor
