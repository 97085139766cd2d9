// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "cli/context.h"

namespace tessaly::cli {

/// Prints the bytes of a note as they are; a terminal gets the text without what could steer it.
void printNoteText(Context& context, std::string_view bytes);

}  // namespace tessaly::cli
