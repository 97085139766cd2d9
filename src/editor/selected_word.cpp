// SPDX-License-Identifier: MIT
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/log.h"
#include "base/text_range.h"
#include "base/utf8.h"
#include "editor/editor_commands.h"

namespace tessaly::editor {

namespace {

bool isInWord(char32_t c) {
    constexpr std::u32string_view delimiters = U"@,，;.!?)}](){[";
    return !base::isWhiteSpace(c) && delimiters.find(c) == std::u32string_view::npos;
}

}  // namespace

std::optional<base::TextRange> selectedWord(std::string_view text, std::size_t location) {
    std::size_t start = base::byteOffset(text, location);
    std::size_t end = start;
    while (start > 0) {
        const base::CodePoint before = base::codePointBefore(text, start);
        if (!isInWord(before.value)) {
            break;
        }
        start -= before.size;
    }
    while (end < text.size()) {
        const base::CodePoint next = base::codePointAt(text, end);
        if (!isInWord(next.value)) {
            break;
        }
        end += next.size;
    }
    if (start == end) {
        base::log("Could not detect selected word in 'selectedWord'");
        return std::nullopt;
    }
    return base::TextRange{base::utf16Length(text.substr(0, start)),
                           base::utf16Length(text.substr(start, end - start))};
}

}  // namespace tessaly::editor
