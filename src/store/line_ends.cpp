// SPDX-License-Identifier: MIT
#include "store/line_ends.h"

#include <algorithm>

#include "base/utf8.h"

namespace tessaly::store {

LineEnds lineEndsOf(std::string_view text) {
    std::size_t breaks = 0;
    std::size_t withReturn = 0;
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos; ++at) {
        ++breaks;
        withReturn += at > 0 && text[at - 1] == '\r' ? 1 : 0;
    }
    return {text.starts_with(base::byteOrderMark), withReturn > breaks - withReturn};
}

std::string plainText(std::string_view text) {
    text = base::withoutByteOrderMark(text);
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') {
            plain += text[i];
        }
    }
    return plain;
}

std::string withLineEnds(std::string_view plain, LineEnds ends) {
    std::string text(ends.hasByteOrderMark ? base::byteOrderMark : std::string_view());
    text.reserve(plain.size() + text.size());
    for (const char c : plain) {
        if (c == '\n' && ends.isCarriageReturn) {
            text += '\r';
        }
        text += c;
    }
    return text;
}

}  // namespace tessaly::store
