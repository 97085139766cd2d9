// SPDX-License-Identifier: MIT
#include "editor/smart_link.h"

#include <algorithm>
#include <array>

#include "base/utf8.h"

namespace tessaly::editor {

namespace {

constexpr std::array<std::string_view, 4> schemes = {"http://", "https://",
                                                     "mailto:", "tessaly://"};

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool beginsLike(std::string_view text, std::string_view scheme) {
    return text.size() > scheme.size() &&
           std::equal(scheme.begin(), scheme.end(), text.begin(),
                      [](char wanted, char found) { return wanted == lowered(found); });
}

bool isAddress(std::string_view text) {
    const bool hasScheme = std::any_of(schemes.begin(), schemes.end(),
                                       [&](auto scheme) { return beginsLike(text, scheme); });
    for (std::size_t at = 0; hasScheme && at < text.size();) {
        const base::CodePoint next = base::codePointAt(text, at);
        if (next.value < 0x20 || next.value == 0x7F || base::isWhiteSpace(next.value)) {
            return false;
        }
        at += next.size;
    }
    return hasScheme;
}

bool isBalanced(std::string_view address) {
    int open = 0;
    for (const char c : address) {
        open += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (open < 0) {
            return false;
        }
    }
    return open == 0;
}

std::string withParenthesesEncoded(std::string_view address) {
    std::string encoded;
    for (const char c : address) {
        encoded += c == '(' ? "%28" : c == ')' ? "%29" : std::string(1, c);
    }
    return encoded;
}

}  // namespace

std::optional<std::string> linkOver(std::string_view words, std::string_view pasted) {
    const std::string_view address = base::trimmed(pasted);
    const std::string_view title = base::trimmed(words);
    if (!isAddress(address) || title.empty() || isAddress(title) ||
        title.find_first_of("[]\n") != std::string_view::npos) {
        return std::nullopt;
    }
    const auto before = static_cast<std::size_t>(title.data() - words.data());
    std::string link(words.substr(0, before));
    link.append("[").append(title).append("](");
    link.append(isBalanced(address) ? std::string(address) : withParenthesesEncoded(address));
    link.append(")").append(words.substr(before + title.size()));
    return link;
}

}  // namespace tessaly::editor
