// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "editor/mark_action.h"
#include "editor/selected_lines.h"

namespace tessaly::editor {

/// Words and the marks around them, in bytes.
struct MarkedWords {
    ByteSpan whole;
    ByteSpan words;

    bool operator==(const MarkedWords&) const = default;
};

/// What the applied pattern of bold, italic or inline code finds in a text, and its first group;
/// nothing for other actions. Linear in the text, where the patterns need a square of the marks
/// that nothing closes; tested against them.
std::vector<MarkedWords> findMarkedWords(MarkAction action, std::string_view text);

/// Whether marks of this action stand right before `words` in a text and right behind them: in
/// "***a***" those of bold and those of italic.
bool areMarksAround(MarkAction action, std::string_view text, ByteSpan words);

}  // namespace tessaly::editor
