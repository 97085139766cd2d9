// SPDX-License-Identifier: MIT
#include "editor/edit.h"

#include "base/utf8.h"

namespace tessaly::editor {

std::string edited(std::string_view text, const Edit& edit) {
    const std::size_t start = base::byteOffset(text, edit.range.location);
    const std::size_t end = start + base::byteOffset(text.substr(start), edit.range.length);
    std::string result(text.substr(0, start));
    result += edit.replacement;
    return result += text.substr(end);
}

}  // namespace tessaly::editor
