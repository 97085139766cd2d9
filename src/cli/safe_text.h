// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::cli {

/// Whether a code point could steer a terminal or hide what a text says: C0 and C1 controls,
/// line and paragraph separators, and the overrides and isolates of the bidirectional algorithm.
constexpr bool isUnsafe(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || (c >= 0x2028 && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069);
}

/// Which white space stays as it is: none for text that stands in one line, all for a whole note.
enum class LineBreaks { replaced, kept };

/// `text` as it may be shown to a person, always UTF-8: a control character reads as "^[", other
/// unsafe ones as "<U+202E>", bytes that are no UTF-8 as U+FFFD. In one line, a tab or a line break
/// becomes a blank; `kept` leaves both, and a "\r" before a line break.
std::string safeText(std::string_view text, LineBreaks lineBreaks = LineBreaks::replaced);

}  // namespace tessaly::cli
