// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

#include "editor/selected_lines.h"

namespace tessaly::editor {

/// What the inline commands' patterns tell of a line, read in one pass: ICU would give lines up
/// that begin with very many blanks, digits or "#". Tested against the patterns. Places are bytes.

/// Whether the exclusion pattern of bold, italic and inline code matches.
bool isHeading(std::string_view line);

/// Behind the indentation and the marker, quote or heading sign, and its blank, that the strip
/// pattern of a link takes off; 0 where there is none.
std::size_t prefixEnd(std::string_view line);

/// Where the line pattern of bold finds words: behind the prefix and the box, up to a line
/// terminator, without the blanks at either end, where the pattern leaves out but one at the start.
/// An empty place where there are no words; in a blank line, its start.
ByteSpan wordsIn(std::string_view line);

/// A part without the white space at its ends.
ByteSpan withoutBlanks(std::string_view text, ByteSpan span);

}  // namespace tessaly::editor
