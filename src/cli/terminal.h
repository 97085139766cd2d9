// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace tessaly::cli {

/// What the user wants of colours; `automatic` is colours in a terminal, unless NO_COLOR is set.
enum class ColorChoice { automatic, always, never };

/// What is known of where standard output goes, found out once at start.
struct Terminal {
    bool isTerminal = false;
    bool hasColors = false;
    bool isUtf8 = true;        ///< by the locale's character set
    std::size_t columns = 80;  ///< of a terminal; elsewhere lines are never cut
};

Terminal describeStandardOutput(ColorChoice colors);

}  // namespace tessaly::cli
