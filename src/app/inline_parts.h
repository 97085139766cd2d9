// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "app/line_look.h"
#include "editor/selected_lines.h"

namespace tessaly::app {

/// Something within a line that has a look of its own. All in bytes of the line.
struct InlinePart {
    SpanKind kind;
    editor::ByteSpan whole;   ///< with its signs
    editor::ByteSpan words;   ///< what stands between the signs; `whole` where there are none
    editor::ByteSpan target;  ///< of links and images: address, title or file; else empty
};

using InlineParts = std::vector<InlinePart>;

/// Stands in the place of text that has been read, in copies that keep their length: it is neither
/// white space nor a sign of anything.
inline constexpr char readAlready = '\x1A';

void appendParts(InlineParts& parts, const InlineParts& more);

/// The parts of a line from byte `contentStart` on, by start, the outer ones first; each lies
/// within the words of the one around it. Linear in the line but for the sorting of what is found.
InlineParts findInlineParts(std::string_view line, std::size_t contentStart);

}  // namespace tessaly::app
