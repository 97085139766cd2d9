// SPDX-License-Identifier: MIT
#pragma once

#include "base/regex.h"

namespace tessaly::grammar::patterns {

/// The grammar's patterns in ICU syntax. They are its definition: the scanner is a faster way to
/// the same answer, and is tested against them. Each is compiled once, on first use, and shared.

/// 1 marker with its white space · 2 tabs before `*` or `-` · 3 tabs before a number · 4 box with
/// its blank, or empty · 5 the rest.
inline constexpr char16_t taskOrList[] =
    uR"((^(\t*)\s*[\*\-]{1} |^(\t*)\s*[0-9]+[\.\)] )(\[[x\->\s]\] |)(.*))";

/// 1 opener · 2 tabs of a quote · 3 the rest.
inline constexpr char16_t headingOrQuote[] = uR"((^#+ |^(\t*)\s*> )(.*))";

/// A task line taken apart: 1 white space · 2 marker with its blank · 3 box with its blank · 5 the
/// box's character · 7 the rest.
inline constexpr char16_t disassembled[] =
    uR"(^(\s*)?([\*\-\>]{1} |[0-9]+[\.\)] )?((\[)([\s\>x\-])(\] ))?(.*))";

/// As `disassembled`, up to where a line's content starts.
inline constexpr char16_t contentPrefix[] =
    uR"(^(\s*)?([\*\-\>]{1} |[0-9]+[\.\)] )?((\[)([\s\>x\-])(\] ))?)";

/// Any Markdown prefix with an optional box; 1 the bare text.
inline constexpr char16_t anyPrefix[] =
    uR"(^\s*(?:[\*\-\>]{1}|#+|[0-9]+[\.\)])(?: \[[ x\>\-]\])? (.*))";

/// Any Markdown prefix without a box; 1 the bare text.
inline constexpr char16_t anyPrefixWithoutBox[] = uR"(^\s*(?:[\*\-\>]{1}|#+|[0-9]+[\.\)]) (.*))";

/// Markers and boxes, taken out of a first line to make a title or a file name.
inline constexpr char16_t markersAndBoxes[] = uR"(([\*\-\>\#]|[0-9]+[\.\)]|\[[x\-\>]\]))";

/// The run of `#` at a title's start.
inline constexpr char16_t leadingHashes[] = uR"(^\s*#*)";

/// 1 the character before · 3 the tag with its sign and argument.
inline constexpr char16_t hashtag[] =
    uR"((\s|^|\"|\'|\(|\[|\{)(?!#[\d[:punct:]]+(\s|$))(#([^[:punct:]\s]|[\-_\/])+?\(.*?\)|#([^[:punct:]\s]|[\-_\/])+))";

/// 1 the character before · 3 the mention with its sign and argument.
inline constexpr char16_t mention[] =
    uR"((\s|^|\"|\'|\(|\[|\{)(?!@[\d[:punct:]]+(\s|$))(@([^[:punct:]\s]|[\-_\/])+?\(.*?\)|@([^[:punct:]\s]|[\-_\/])+))";

/// 1 the tag with the white space before it · 3 date · 4 year · 5 month · 6 day.
inline constexpr char16_t dateTag[] =
    uR"(((\s)?[<>@](([0-9]{4})-(0[1-9]|1[0-2])-(0[1-9]|1[0-9]|2[0-9]|3[0-1]))))";

/// 1 the tag with the white space before it · 3 date · 8 time with marker · 9 hour · 10 am or pm.
inline constexpr char16_t doneTag[] =
    uR"(((\s)?@done\((([0-9]{4})-(0[1-9]|1[0-2])-(0[1-9]|1[0-9]|2[0-9]|3[0-1]))( ((0[0-9]|1[0-9]|2[0-3]):[0-5][0-9]( ?[aApP][mM])?))?\)))";

/// A line that a state can be given to; 1 marker with its white space and blank · 2 the rest.
inline constexpr char16_t actionableLine[] = uR"(^(\s*(?:[\*\-]{1} |[0-9]+[\.\)] ))(.*)$)";

/// Boxes behind a marker: of any state, then of some. 1 the marker with the white space before it ·
/// 2 what stands behind the box.
inline constexpr char16_t anyBox[] = uR"(^(\s*(?:[\*\-]{1}|[0-9]+[\.\)])) \[[ x\>\-]\] (.*))";
inline constexpr char16_t openOrScheduledBox[] =
    uR"(^(\s*(?:[\*\-]{1}|[0-9]+[\.\)])) \[[ \>]\] (.*))";
inline constexpr char16_t doneOrCanceledBox[] =
    uR"(^(\s*(?:[\*\-]{1}|[0-9]+[\.\)])) \[[x\-]\] (.*))";
inline constexpr char16_t doneBox[] = uR"(^(\s*(?:[\*\-]{1}|[0-9]+[\.\)])) \[x\] (.*))";
inline constexpr char16_t canceledBox[] = uR"(^(\s*(?:[\*\-]{1}|[0-9]+[\.\)])) \[-\] (.*))";
inline constexpr char16_t scheduledBox[] = uR"(^(\s*(?:[\*\-]{1}|[0-9]+[\.\)])) \[>\] (.*))";

/// The compiled form of one of the patterns above, shared by all threads.
const base::Regex& compiled(const char16_t* pattern);

}  // namespace tessaly::grammar::patterns
