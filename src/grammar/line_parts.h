// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

#include "base/todo_character.h"
#include "grammar/todo.h"

namespace tessaly::grammar {

/// The pieces that a line's beginning is made of. Places are bytes from the line's start; each
/// piece is read in one step, without trying again.

/// What is at a place of the line; past its end a NUL, which no rule asks for.
inline char charAt(std::string_view line, std::size_t place) {
    return place < line.size() ? line[place] : '\0';
}

inline bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The first place from `place` on that holds no white space.
std::size_t skipSpace(std::string_view line, std::size_t place);

/// Whether a quote's `>` counts as a marker too.
enum class Quotes { no, yes };

/// The place behind the marker that begins at `place`, without its blank; 0 when there is none. A
/// quote's sign leaves `marker` as it was.
std::size_t signEnd(std::string_view line, std::size_t place, Quotes quotes,
                    base::TodoCharacter& marker);

/// As `signEnd`, with the blank that must follow.
std::size_t markerEnd(std::string_view line, std::size_t place, Quotes quotes,
                      base::TodoCharacter& marker);

/// The box that begins at a place.
struct Box {
    TodoType type;    ///< done, cancelled, scheduled or open
    std::size_t end;  ///< behind the blank that belongs to it; 0 when there is no box
};
Box boxAt(std::string_view line, std::size_t place);

/// The beginning of `text` up to the first line terminator of any kind.
std::string_view upToTerminator(std::string_view text);

}  // namespace tessaly::grammar
