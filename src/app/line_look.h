// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_range.h"
#include "grammar/todo.h"

namespace tessaly::app {

/// What a stretch of a line's content is.
enum class SpanKind : std::uint8_t {
    markup,   ///< signs that say how something looks, quiet unless the caret is in the line
    address,  ///< of a link with a title: as quiet as markup
    bold,
    italic,
    struck,    ///< "~~words~~" without its signs
    marked,    ///< "==words==" without its signs
    code,      ///< nothing lies within
    link,      ///< title or bare address (of any scheme); `target` is the address
    noteLink,  ///< "[[title]]" without its brackets; `target` is the title
    image,     ///< the whole "![title](file)"; `target` is the file
    hashtag,
    mention,
    scheduleTag,
    backLink,
    plainDate,
    doneTag,
};

/// Spans may lie within others (a hashtag in bold words), and never cross. Tags and dates are those
/// of the grammar, without the white space before a date; one that touches code or an address is
/// none here.
struct LookSpan {
    SpanKind kind;
    base::TextRange range;  ///< UTF-16 units of the line
    std::string target;

    bool operator==(const LookSpan&) const = default;
};

/// How one line of a note is to look. Ranges are UTF-16 units of the line.
struct LineLook {
    enum class Kind : std::uint8_t {
        text,
        heading,
        quote,
        bullet,
        numbered,
        task,       ///< with a marker of the settings, or a box
        checklist,  ///< a task by its box, though its bare marker makes none
        rule,       ///< "---" and the like: a line across
        code,       ///< within a fence
        fence,      ///< the line that opens or closes it
        table,
        plain  ///< too long to be styled
    };
    Kind kind = Kind::text;
    std::size_t headingLevel = 0;
    /// What the grammar says of the line; of a task, its state. Also in fences, which the grammar
    /// does not know: there `kind` tells that a task is none to the eye.
    grammar::TodoType state = grammar::TodoType::empty;
    // What follows is empty for rules, fences and what they hold, and plain lines.
    base::TextRange indent;       ///< white space before all else
    base::TextRange marker;       ///< opener of heading or quote, marker and box, with their blanks
    base::TextRange box;          ///< within `marker`: the brackets and the sign between them
    std::vector<LookSpan> spans;  ///< by start, the outer ones first

    bool operator==(const LineLook&) const = default;
};

/// What a line needs to know of the lines before it: whether a fence is open, and by what signs, as
/// only the same close it.
enum class FenceState : std::uint8_t { outside, backticks, tildes };

/// Above so many UTF-16 units a line is `plain`: it would hold up whoever shows it.
inline constexpr std::size_t longestStyledLine = 20'000;

/// `line` is UTF-8 without its line end. Reads kind, state and marks by the grammar; any text has
/// an answer, in time that is linear in its length.
LineLook lineLook(std::string_view line, FenceState before, const grammar::MarkerSettings& markers);

/// The state behind a line.
FenceState fenceAfter(std::string_view line, FenceState before);

}  // namespace tessaly::app
