// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cli/context.h"

namespace tessaly::cli {

/// "1,024 bytes".
std::string sizeInWords(Context& context, std::uint64_t bytes);

/// Whether bytes are for programs alone: they are not UTF-8, and hold NUL.
bool isBinary(std::string_view bytes);

/// Prints the bytes of a note as they are; a terminal gets the text without what could steer it,
/// and of what is binary only how much it is.
void printNoteText(Context& context, std::string_view bytes);

}  // namespace tessaly::cli
