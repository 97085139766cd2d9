// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "base/text_range.h"
#include "cli/json_line.h"
#include "editor/editor_commands.h"

namespace tessaly::cli {

/// How places in a text are counted: all that it holds, a byte-order mark included.
enum class TextUnit { utf16, bytes };

/// Lines, counted from 1.
struct LineNumbers {
    std::size_t first = 1;
    std::size_t last = 1;
};

/// Reads "2-4" or "2".
std::optional<LineNumbers> lineNumbersFrom(std::string_view text);

/// Reads "10,3": location and length.
std::optional<base::TextRange> selectionFrom(std::string_view text);

/// What a command works on: lines, a stretch in `unit`, else the whole text.
struct MarkPlace {
    std::optional<LineNumbers> lines;
    std::optional<base::TextRange> selection;
    TextUnit unit = TextUnit::utf16;
};

/// A text after a command. `range` is of the text as it was, `selection` of the text as it is.
struct MarkedText {
    struct Change {
        base::TextRange range;
        std::string replacement;
    };
    std::string text;
    base::TextRange selection;
    std::optional<Change> edit;  ///< nothing: there was nothing to change
};

/// Runs a command on UTF-8. A byte-order mark stays. Failures, in words for the user: the place is
/// not in the text, or within a character; and those of `editor::mark`.
base::Result<MarkedText> markedText(editor::MarkAction action, std::string_view text,
                                    const MarkPlace& place, const editor::MarkSettings& settings);

JsonObject recordOf(const MarkedText& marked);

}  // namespace tessaly::cli
