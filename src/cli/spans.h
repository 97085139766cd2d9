// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/terminal.h"

namespace tessaly::cli {

/// What a piece of a line means; a terminal shows it as a colour or weight.
enum class Style {
    plain,
    heading,
    section,
    dim,
    hashtag,
    mention,
    date,
    open,
    done,
    cancelled,
    scheduled,
    struck,  ///< the text of a cancelled task
    late,
    warning,
    added,    ///< a line that a change would add
    removed,  ///< a line that a change would take away
    place,    ///< where in a file a change would be
    match,    ///< what was searched for
};

/// A piece of one line; its text holds no line break and nothing unsafe.
struct Span {
    Style style = Style::plain;
    std::string text;
};
using Spans = std::vector<Span>;

/// Columns that a line takes.
std::size_t widthOf(const Spans& spans);

/// The line cut to at most `columns` columns, ending in three dots where something was cut off. A
/// wide character is never halved.
Spans cutTo(const Spans& spans, std::size_t columns, const Terminal& terminal);

/// A line whose `right` part ends at the terminal's edge, cut at its start where it would take more
/// than half of the line; the left part is cut to make room. A terminal has at least 20 columns.
Spans withRightPart(const Spans& left, const Spans& right, const Terminal& terminal);

/// The line in the terminal's colours, if it has any, without a line break.
std::string drawn(const Spans& spans, const Terminal& terminal);

}  // namespace tessaly::cli
