// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "base/text_range.h"
#include "editor/edit.h"

namespace tessaly::editor {

enum class Direction { up, down };

/// Exchanges the lines that the selection touches with the line above or below; the selection goes
/// with them. A text whose last line has no break has none afterwards either. Nothing at the first
/// or last line: what stands behind the last line break is a line only if it is not
/// empty.
std::optional<Edit> moveLines(std::string_view text, base::TextRange selection,
                              Direction direction);

}  // namespace tessaly::editor
