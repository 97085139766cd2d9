// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "base/text_range.h"

namespace tessaly::editor {

/// A stretch of a text in bytes.
struct ByteSpan {
    std::size_t start = 0;
    std::size_t end = 0;

    std::string_view in(std::string_view text) const { return text.substr(start, end - start); }
    bool operator==(const ByteSpan&) const = default;
};

/// The bytes of a range. An end inside a surrogate pair or a line break "\r\n" counts as before it,
/// one past the text's end as there.
ByteSpan bytesOf(std::string_view text, base::TextRange range);

/// The lines that a selection touches, in order, at least one, without their "\n". One that ends
/// right at a line's start does not touch that line, unless it is empty.
std::vector<ByteSpan> linesTouched(std::string_view text, ByteSpan selection);

/// Where the line begins that holds byte `at`, or ends there.
std::size_t lineStart(std::string_view text, std::size_t at);

/// A line without the carriage return that belongs to its break.
ByteSpan withoutReturn(std::string_view text, ByteSpan line);

/// Whether a line holds nothing but white space.
bool isBlank(std::string_view line);

}  // namespace tessaly::editor
