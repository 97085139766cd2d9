// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/text_range.h"

namespace tessaly::editor {

/// One change of a text, and what is selected then. Ranges are UTF-16 units: `range` of the text as
/// it was, `selection` of the text as it will be. Neither splits a character's surrogate pair.
struct Edit {
    base::TextRange range;
    std::string replacement;
    base::TextRange selection;

    bool operator==(const Edit&) const = default;
};

/// The text after an edit of it.
std::string edited(std::string_view text, const Edit& edit);

}  // namespace tessaly::editor
