// SPDX-License-Identifier: MIT
#include "editor/selection_map.h"

#include <algorithm>
#include <optional>

#include "base/localisation.h"
#include "base/utf8.h"

namespace tessaly::editor {

namespace {

bool isInsideCharacter(std::string_view text, std::size_t place) {
    return place < text.size() && (static_cast<unsigned char>(text[place]) & 0xC0U) == 0x80U;
}

std::size_t sharedEnd(std::string_view before, std::string_view after) {
    const auto [it, other] =
        std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend());
    auto length = static_cast<std::size_t>(it - before.rbegin());
    while (length > 0 && isInsideCharacter(before, before.size() - length)) {
        --length;
    }
    return length;
}

std::optional<std::size_t> byteOf(std::string_view text, std::size_t units) {
    const std::size_t byte = base::byteOffset(text, units);
    return base::utf16Length(text.substr(0, byte)) == units ? std::optional(byte) : std::nullopt;
}

}  // namespace

base::Result<ByteSpan> selectedBytes(std::string_view text, base::TextRange selection) {
    const std::size_t length = base::utf16Length(text);
    if (selection.location > length || selection.length > length - selection.location) {
        return base::Failure{base::Failure::Kind::malformed,
                             base::tr("the selection goes past the end of the text")};
    }
    const auto start = byteOf(text, selection.location);
    const auto end = byteOf(text, selection.end());
    if (!start || !end) {
        return base::Failure{base::Failure::Kind::malformed,
                             base::tr("the selection splits a character")};
    }
    return ByteSpan{*start, *end};
}

base::TextRange unitsOf(std::string_view text, ByteSpan span) {
    return {base::utf16Length(text.substr(0, span.start)),
            base::utf16Length(text.substr(span.start, span.end - span.start))};
}

std::size_t movedPlace(std::string_view before, std::string_view after, std::size_t place) {
    const std::size_t end = sharedEnd(before, after);
    before.remove_suffix(end);
    after.remove_suffix(end);
    if (place >= before.size()) {
        return after.size() + (place - before.size());
    }
    std::size_t moved = std::min(place, after.size());
    while (isInsideCharacter(after, moved)) {
        --moved;
    }
    return moved;
}

}  // namespace tessaly::editor
