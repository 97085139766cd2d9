// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessaly::app {

/// A note's text as an editor holds it, whose lines all end in "\n": each of "\r\n", "\r", "\n",
/// U+2029, U+FDD0 and U+FDD1 ends one there, as Qt's documents have it (QTextDocument's own block
/// separators). All other characters stay, NUL, U+2028 and no-break spaces too.
std::string shownText(std::string_view noteText);

/// The note's text after `shown` was edited: lines that are as in `noteText` keep their own ends,
/// and so does one whose text alone has changed. A new line has that of the line before it, else
/// the commonest, but never a separator that no other program takes for a line's end. `shownText`
/// of it is `shown`, and `noteTextOf(noteText, shownText(noteText))` is `noteText`; for the first's
/// sake an empty line behind a "\r" never ends in a "\n". Costs what has changed, and one
/// comparison of the rest.
std::string noteTextOf(std::string_view noteText, std::string_view shown);

/// A line of the note, which ends in "\n" alone, as the first line of `shownText` that it is; and
/// the line of the note that a shown line is a part of. From 0; what is behind the end is the last.
std::size_t shownLineOf(std::string_view noteText, std::size_t noteLine);
std::size_t noteLineOf(std::string_view noteText, std::size_t shownLine);

}  // namespace tessaly::app
