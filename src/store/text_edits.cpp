// SPDX-License-Identifier: MIT
#include "store/text_edits.h"

#include <string>

#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::store {
namespace {

using base::Failure;
using base::WriteMode;

bool beginsWithBreak(std::string_view text) {
    return text.starts_with('\n') || text.starts_with("\r\n");
}

// The line break to write: the content's; a content of one line has none, so then the text's.
std::string_view breakForBoth(std::string_view content, std::string_view text) {
    return lineBreakOf(content.find('\n') != content.npos ? content : text);
}

std::string appended(std::string_view content, std::string_view text) {
    if (content.empty()) {
        return std::string(text);
    }
    const std::string_view lineBreak = breakForBoth(content, text);
    const bool isEnded = content.ends_with('\n');
    std::string result(content);
    if (!isEnded && !beginsWithBreak(text)) {
        result += lineBreak;
    }
    result += withLineBreaks(text, lineBreak);
    if (isEnded && !text.ends_with('\n')) {
        result += lineBreak;
    }
    return result;
}

std::string prepended(std::string_view content, std::string_view text) {
    const std::string_view lineBreak = breakForBoth(content, text);
    std::string result = withLineBreaks(text, lineBreak);
    if (!beginsWithBreak(content) && !text.ends_with('\n')) {
        result += lineBreak;
    }
    return result.append(content);
}

Failure refused(std::string words) {
    return {Failure::Kind::malformed, std::move(words)};
}

// The byte at which UTF-16 unit `units` starts; nothing inside a surrogate pair or past the end.
std::optional<std::size_t> offsetOfUnit(std::string_view text, std::size_t units) {
    const std::size_t offset = base::byteOffset(text, units);
    return base::utf16Length(text.substr(0, offset)) == units ? std::optional(offset)
                                                              : std::nullopt;
}

}  // namespace

std::string_view lineBreakOf(std::string_view text) {
    const std::size_t end = text.find('\n');
    return end != text.npos && end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

std::string withLineBreaks(std::string_view text, std::string_view lineBreak) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t end = text.find('\n'); end != text.npos; end = text.find('\n')) {
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        result.append(line).append(lineBreak);
        text.remove_prefix(end + 1);
    }
    return result.append(text);
}

std::optional<std::string> withTextAdded(std::string_view content, std::string_view text,
                                         WriteMode mode) {
    if (mode == WriteMode::overwrite) {
        return text == content ? std::nullopt : std::optional<std::string>(text);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    return mode == WriteMode::append ? appended(content, text) : prepended(content, text);
}

bool holdsLines(std::string_view content, std::string_view text) {
    const std::string whole = withLineBreaks(content, "\n");
    std::string lines = withLineBreaks(text, "\n");
    if (lines.ends_with('\n')) {
        lines.pop_back();
    }
    for (std::size_t at = whole.find(lines); at != whole.npos; at = whole.find(lines, at)) {
        const std::size_t end = at + lines.size();
        const bool begins = at == 0 || whole[at - 1] == '\n';
        if (begins && (end == whole.size() || whole[end] == '\n')) {
            return true;
        }
        at = whole.find('\n', at);
        if (at++ == whole.npos) {
            break;
        }
    }
    return text.empty();
}

base::Result<std::string> withoutRange(std::string_view content, base::TextRange range,
                                       const std::optional<std::string>& expected) {
    const std::size_t length = base::utf16Length(content);
    if (range.location > length || range.length > length - range.location) {
        return refused(base::tr("the range goes past the end of the text"));
    }
    const auto from = offsetOfUnit(content, range.location);
    const auto to = offsetOfUnit(content, range.end());
    if (!from || !to) {
        return refused(base::tr("the range cuts a character in two"));
    }
    if (expected && content.substr(*from, *to - *from) != *expected) {
        return refused(base::tr("another text stands there now"));
    }
    return std::string(content.substr(0, *from)).append(content.substr(*to));
}

}  // namespace tessaly::store
