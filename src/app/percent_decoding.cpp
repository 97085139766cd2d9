// SPDX-License-Identifier: MIT
#include "app/percent_decoding.h"

#include "base/utf8.h"

namespace tessaly::app {

namespace {

/// -1: it is no hexadecimal digit.
int hexValue(char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    const std::size_t value = digits.find(lower);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

}  // namespace

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isCode = text[at] == '%' && at + 2 < text.size() &&
                            hexValue(text[at + 1]) >= 0 && hexValue(text[at + 2]) >= 0;
        if (isCode) {
            decoded += static_cast<char>(hexValue(text[at + 1]) * 16 + hexValue(text[at + 2]));
            at += 2;
        } else {
            decoded += text[at];
        }
    }
    if (!base::isUtf8(decoded) || decoded.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return decoded;
}

}  // namespace tessaly::app
