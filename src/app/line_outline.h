// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "app/line_look.h"

namespace tessaly::app {

/// What tells which lines belong to a line: a heading has those up to the next one of its level or
/// above, a list item or task has those that are indented further, with blank lines between them.
struct OutlineLine {
    enum class Kind { blank, heading, item, text };
    Kind kind = Kind::blank;
    std::size_t level = 0;   ///< of a heading
    std::size_t indent = 0;  ///< of all others; a tab counts as four blanks

    bool operator==(const OutlineLine&) const = default;
};

/// `line` is UTF-8 without its line end; `before` as for `lineLook`. Inside a fence all is text.
OutlineLine outlineLine(std::string_view line, FenceState before);

/// A line of a note, by its number; nothing: the note has no more.
using OutlineLines = std::function<std::optional<OutlineLine>(std::size_t line)>;

/// Whether lines belong to a line. Reads up to the first that is not blank.
bool hasItsLines(std::size_t line, const OutlineLines& lines);

/// The last line that belongs to a line; nothing: none does. Reads lines up to the first that does
/// not.
std::optional<std::size_t> lastOfItsLines(std::size_t line, const OutlineLines& lines);

}  // namespace tessaly::app
