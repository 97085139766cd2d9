// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tessaly::tasks {

/// Stands for no line, and for no edit.
inline constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

/// A line of a text that is edited. Points into the text or the edit.
struct TextLine {
    std::string_view text;
    std::string_view end;        ///< its line break; a last line may have none, or a lone "\r"
    std::size_t edit = nowhere;  ///< that it comes from
};

using TextLines = std::vector<TextLine>;

/// The lines of a text. What follows the last line break is one unless it is empty.
TextLines linesIn(std::string_view text);

/// The lines as a text that ends in a line break if `before`, which they come from, does; or if the
/// last of them is empty, as it would be none without. New lines get that text's line break.
std::string joinedLines(const TextLines& lines, std::string_view before);

/// What the line before a place reads; empty at the start.
std::string anchorOf(const TextLines& lines, std::size_t place);

/// Where lines stand that are asked for, in order.
class LinePlaces {
public:
    /// `text` must live as long as this object.
    void want(std::string_view text) { _places.try_emplace(text); }

    /// Looks for all that is wanted, in one pass.
    void fill(const TextLines& lines);

    /// Of a wanted text.
    const std::vector<std::size_t>& of(std::string_view text) const { return _places.at(text); }

private:
    std::unordered_map<std::string_view, std::vector<std::size_t>> _places;
};

}  // namespace tessaly::tasks
