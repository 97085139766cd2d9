// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_range.h"
#include "editor/edit.h"

namespace tessaly::editor {

/// One of several small changes of a text: `length` bytes at byte `at` give way to `with`.
struct Splice {
    std::size_t at;
    std::size_t length;
    std::string with;
};

/// Some, in order, none overlapping.
using Splices = std::vector<Splice>;

/// On which side of what is put in at its place a place comes to stand.
enum class Side { before, behind };

/// Where byte `at` of the text comes to stand, in UTF-16 units of the changed text. A place in
/// something taken out comes to stand where that was.
std::size_t locationAfter(std::string_view text, const Splices& splices, std::size_t at, Side side);

/// All the changes, at least one, as one edit.
Edit editOf(std::string_view text, const Splices& splices, base::TextRange selection);

}  // namespace tessaly::editor
