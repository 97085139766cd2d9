// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

#include "base/failure.h"
#include "base/text_range.h"
#include "editor/selected_lines.h"

namespace tessaly::editor {

/// The bytes that are selected. Failure `malformed`, in words for the user: the selection goes past
/// the end of the text or splits a surrogate pair.
base::Result<ByteSpan> selectedBytes(std::string_view text, base::TextRange selection);

base::TextRange unitsOf(std::string_view text, ByteSpan span);

/// Where a place of a line is after a change of it, in bytes: places in what has stayed at the
/// line's end stay with it, all others keep their distance from the line's start as far as that is
/// not past the change. So a place at which something is put in goes behind it.
std::size_t movedPlace(std::string_view before, std::string_view after, std::size_t place);

}  // namespace tessaly::editor
