// SPDX-License-Identifier: MIT
#include "app/inline_emphasis.h"

#include <algorithm>

#include "editor/inline_marks.h"
#include "grammar/line_parts.h"

namespace tessaly::app {

namespace {

using editor::MarkAction;

/// What the editor's command finds, but for signs alone: nobody means a row of stars to be bold.
InlineParts findMarkedParts(MarkAction action, SpanKind kind, std::string_view text) {
    InlineParts parts;
    const std::string_view signs = action == MarkAction::inlineCode ? "" : "*_";
    for (const editor::MarkedWords& found : editor::findMarkedWords(action, text)) {
        if (found.words.in(text).find_first_not_of(signs) != std::string_view::npos) {
            parts.push_back({kind, found.whole, found.words, {}});
        }
    }
    return parts;
}

bool isAsciiWordAt(std::string_view text, std::size_t at) {
    const char c = grammar::charAt(text, at);
    return grammar::isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isGapInText(std::string_view text, std::size_t at) {
    return at >= text.size() || text[at] == ' ' || text[at] == '\t';
}

std::size_t behindRun(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(text[at], at), text.size());
}

/// Words between two of a sign, such as "~~" or "*", that touch them and no letter outside: "a==b"
/// and "2*3*4" say something else, and so do longer rows of the sign.
InlineParts findPaired(std::string_view sign, SpanKind kind, std::string_view text) {
    InlineParts parts;
    constexpr std::size_t none = std::string_view::npos;
    std::size_t opening = none;
    std::size_t behind = 0;
    for (std::size_t at = text.find(sign); at != none; at = text.find(sign, behind)) {
        behind = behindRun(text, at);
        if (behind - at != sign.size()) {
            continue;
        }
        if (opening != none && !isGapInText(text, at - 1) && !isAsciiWordAt(text, behind)) {
            parts.push_back({kind, {opening, behind}, {opening + sign.size(), at}, {}});
            opening = none;
        } else if (opening == none && !isGapInText(text, behind) &&
                   (at == 0 || !isAsciiWordAt(text, at - 1))) {
            opening = at;
        }
    }
    return parts;
}

void blankSigns(std::string& text, editor::ByteSpan signs) {
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(signs.start),
              text.begin() + static_cast<std::ptrdiff_t>(signs.end), ' ');
}

}  // namespace

InlineParts findCode(std::string_view text) {
    return findMarkedParts(MarkAction::inlineCode, SpanKind::code, text);
}

InlineParts findEmphasis(std::string text) {
    InlineParts parts = findMarkedParts(MarkAction::bold, SpanKind::bold, text);
    appendParts(parts, findPaired("~~", SpanKind::struck, text));
    appendParts(parts, findPaired("==", SpanKind::marked, text));
    for (const InlinePart& part : parts) {
        blankSigns(text, {part.whole.start, part.words.start});
        blankSigns(text, {part.words.end, part.whole.end});
    }
    appendParts(parts, findPaired("*", SpanKind::italic, text));
    appendParts(parts, findPaired("_", SpanKind::italic, text));
    return parts;
}

}  // namespace tessaly::app
