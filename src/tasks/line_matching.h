// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "tasks/line_edit.h"
#include "tasks/text_lines.h"

namespace tessaly::tasks {

inline bool removesLine(const LineEdit& edit) {
    return edit.kind == LineEdit::Kind::remove;
}

inline bool takesLine(const LineEdit& edit) {
    return removesLine(edit) || edit.kind == LineEdit::Kind::replace;
}

/// Gives each edit that takes a line of a text one of its own, if there is one that is surely
/// meant.
class LineMatching {
public:
    /// `places` knows of what all edits ask for. The edits must live as long as this object.
    LineMatching(std::span<const LineEdit> edits, const TextLines& lines, const LinePlaces& places);

    /// The edit that takes a line; `nowhere`: none does.
    std::size_t editOf(std::size_t line) const { return _editOf[line]; }

    /// The line that an edit takes; `nowhere`: none.
    std::size_t lineOf(std::size_t edit) const { return _lineOf[edit]; }

private:
    using Indices = std::vector<std::size_t>;

    // `group`: edits that ask for the same text, by index; `places`: all lines with that text.
    void match(const Indices& group, const Indices& places);
    void matchByIndex(const Indices& group, const Indices& places);
    void matchInOrder(const Indices& group, const Indices& places);
    void take(std::size_t edit, std::size_t line);

    const std::span<const LineEdit> _edits;
    Indices _editOf;
    Indices _lineOf;
};

}  // namespace tessaly::tasks
