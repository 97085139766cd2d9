// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/text_range.h"
#include "base/utf8.h"

namespace tessaly::tests {

/// A text with a selection, which tests write as one: "{" and "}" stand around what is selected, or
/// "|" where the cursor is.
struct MarkedText {
    std::string text;
    base::TextRange selection;
};

inline MarkedText readMarked(std::string_view notation) {
    MarkedText result;
    for (const char c : notation) {
        const std::size_t here = base::utf16Length(result.text);
        if (c == '{' || c == '|') {
            result.selection.location = here;
        } else if (c == '}') {
            result.selection.length = here - result.selection.location;
        } else {
            result.text += c;
        }
    }
    return result;
}

inline std::string writtenMarked(std::string text, base::TextRange selection) {
    const std::size_t start = base::byteOffset(text, selection.location);
    if (selection.length == 0) {
        return text.insert(start, "|");
    }
    return text.insert(base::byteOffset(text, selection.end()), "}").insert(start, "{");
}

}  // namespace tessaly::tests
