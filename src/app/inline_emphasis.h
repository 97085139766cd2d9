// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "app/inline_parts.h"

namespace tessaly::app {

/// Code in a text, as the editor's command finds it.
InlineParts findCode(std::string_view text);

/// Bold, italic, struck and marked words of a text that holds no code; they may cross. Bold and
/// italic are what the editor's commands find; italic words stand between white space, and the
/// signs of the others count as such: "***a***" is both. Linear.
InlineParts findEmphasis(std::string text);

}  // namespace tessaly::app
