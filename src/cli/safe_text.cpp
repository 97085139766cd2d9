// SPDX-License-Identifier: MIT
#include "cli/safe_text.h"

#include <fmt/format.h>

#include "base/utf8.h"

namespace tessaly::cli {

namespace {

bool staysInNote(std::string_view rest, char32_t c) {
    return c == '\t' || c == '\n' || (c == '\r' && rest.size() > 1 && rest[1] == '\n');
}

void appendSafe(std::string& safe, char32_t c) {
    if (!isUnsafe(c)) {
        base::appendUtf8(safe, c);
    } else if (c < 0x20 || c == 0x7F) {
        safe += '^';
        safe += static_cast<char>(c ^ 0x40U);
    } else {
        safe += fmt::format("<U+{:04X}>", static_cast<unsigned>(c));
    }
}

}  // namespace

std::string safeText(std::string_view text, LineBreaks lineBreaks) {
    std::string safe;
    safe.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const base::CodePoint point = base::codePointAt(text, at);
        const char32_t c = point.value;
        if (lineBreaks == LineBreaks::kept && staysInNote(text.substr(at), c)) {
            safe += static_cast<char>(c);
        } else if (c == '\t' || c == '\n' || c == '\r') {
            safe += lineBreaks == LineBreaks::kept ? "^M" : " ";
        } else {
            appendSafe(safe, c);
        }
        at += point.size;
    }
    return safe;
}

}  // namespace tessaly::cli
