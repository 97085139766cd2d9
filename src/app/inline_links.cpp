// SPDX-License-Identifier: MIT
#include "app/inline_links.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "base/utf8.h"
#include "grammar/line_parts.h"

namespace tessaly::app {

namespace {

using editor::ByteSpan;
using grammar::charAt;

constexpr std::size_t notInText = std::string_view::npos;

ByteSpan withoutSpaceAround(std::string_view text, ByteSpan span) {
    const std::string_view inner = base::trimmed(span.in(text));
    const std::size_t start =
        inner.empty() ? span.start : static_cast<std::size_t>(inner.data() - text.data());
    return {start, start + inner.size()};
}

/// For the place of each "(" that of the ")" that closes it, `notInText` for none and for all
/// others. Read once, as an address that nothing closes would be searched for its end from each
/// link.
std::vector<std::size_t> closingParentheses(std::string_view text) {
    std::vector<std::size_t> closing(text.size(), notInText);
    std::vector<std::size_t> open;
    for (std::size_t at = text.find_first_of("()"); at != notInText;
         at = text.find_first_of("()", at + 1)) {
        if (text[at] == '(') {
            open.push_back(at);
        } else if (!open.empty()) {
            closing[open.back()] = at;
            open.pop_back();
        }
    }
    return closing;
}

/// Reads links from left to right; each search ends at the next bracket.
class LinkReader {
public:
    explicit LinkReader(std::string_view text) : _text(text) {
        if (text.find("](") != notInText) {
            _closing = closingParentheses(text);
        }
    }

    InlineParts all() const {
        InlineParts links;
        for (std::size_t at = _text.find('['); at != notInText;) {
            const auto link = charAt(_text, at + 1) == '[' ? noteLinkAt(at) : titledAt(at);
            if (link) {
                links.push_back(*link);
            }
            at = _text.find('[', link ? link->whole.end : at + 1);
        }
        return links;
    }

private:
    /// The title behind an opening bracket; nothing when no bracket closes it.
    std::optional<ByteSpan> titleFrom(std::size_t start) const {
        const std::size_t end = _text.find_first_of("[]", start);
        return end == notInText || _text[end] == '[' ? std::nullopt
                                                     : std::optional(ByteSpan{start, end});
    }

    std::optional<InlinePart> noteLinkAt(std::size_t at) const {
        const auto title = titleFrom(at + 2);
        if (!title || charAt(_text, title->end + 1) != ']' || editor::isBlank(title->in(_text))) {
            return std::nullopt;
        }
        return InlinePart{
            SpanKind::noteLink, {at, title->end + 2}, *title, withoutSpaceAround(_text, *title)};
    }

    std::optional<InlinePart> titledAt(std::size_t at) const {
        const auto title = titleFrom(at + 1);
        if (!title || charAt(_text, title->end + 1) != '(') {
            return std::nullopt;
        }
        const std::size_t open = title->end + 1;
        const std::size_t close = _closing[open];
        if (close == notInText || editor::isBlank(ByteSpan{open + 1, close}.in(_text))) {
            return std::nullopt;
        }
        const ByteSpan address = withoutSpaceAround(_text, {open + 1, close});
        if (at > 0 && _text[at - 1] == '!') {
            const ByteSpan whole{at - 1, close + 1};
            return InlinePart{SpanKind::image, whole, whole, address};
        }
        if (editor::isBlank(title->in(_text))) {
            return std::nullopt;
        }
        return InlinePart{SpanKind::link, {at, close + 1}, *title, address};
    }

    const std::string_view _text;
    std::vector<std::size_t> _closing;
};

bool isSignOf(char c, std::string_view some) {
    return some.find(c) != notInText;
}

bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool maySchemeHold(char c) {
    return isAsciiLetter(c) || grammar::isDigit(c) || isSignOf(c, "+-.");
}

/// Where the scheme begins that ends before `end`, not before `from`; `end` for none.
std::size_t schemeStart(std::string_view text, std::size_t from, std::size_t end) {
    std::size_t start = end;
    while (start > from && maySchemeHold(text[start - 1])) {
        --start;
    }
    while (start < end && !isAsciiLetter(text[start])) {
        ++start;
    }
    return start;
}

bool mayAddressHold(char32_t c) {
    return c > 0x20 && c != 0x7F && c != U'<' && c != U'>' && c != U'"' && c != U'`' &&
           !base::isWhiteSpace(c);
}

/// A place up to which an address goes, before the punctuation of the sentence around it: a closing
/// parenthesis belongs to the address only if it closes one there.
std::size_t withoutPunctuation(std::string_view text, ByteSpan address) {
    const std::string_view inner = address.in(text);
    auto surplus =
        std::count(inner.begin(), inner.end(), ')') - std::count(inner.begin(), inner.end(), '(');
    std::size_t end = address.end;
    while (end > address.start) {
        const char last = text[end - 1];
        if (last == ')' && surplus > 0) {
            --surplus;
        } else if (!isSignOf(last, ".,;:!?'*_~]}|")) {
            break;
        }
        --end;
    }
    return end;
}

/// Where the address ends of which `start` is the first byte behind the scheme.
std::size_t addressEnd(std::string_view text, std::size_t start) {
    std::size_t end = start;
    while (end < text.size()) {
        const base::CodePoint next = base::codePointAt(text, end);
        if (!mayAddressHold(next.value)) {
            break;
        }
        end += next.size;
    }
    return withoutPunctuation(text, {start, end});
}

}  // namespace

InlineParts findLinks(std::string_view text) {
    return LinkReader(text).all();
}

InlineParts findAddresses(std::string_view text) {
    constexpr std::string_view behindScheme = "://";
    InlineParts addresses;
    std::size_t from = 0;
    for (std::size_t at = text.find(behindScheme); at != notInText;
         at = text.find(behindScheme, from)) {
        const std::size_t host = at + behindScheme.size();
        const ByteSpan whole{schemeStart(text, from, at), addressEnd(text, host)};
        if (whole.start < at && whole.end > host) {
            addresses.push_back({SpanKind::link, whole, whole, whole});
        }
        from = whole.end;
    }
    return addresses;
}

}  // namespace tessaly::app
