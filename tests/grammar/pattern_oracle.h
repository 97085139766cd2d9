// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "grammar/line_scanner.h"

namespace tessaly::grammar::testing {

/// What the grammar's patterns, run by ICU, say of one line, as readable text: kind,
/// indentation, content, the parts it is taken into, then each tag with its place. The scanner must
/// say the same.
std::string readByPatterns(std::string_view line, const MarkerSettings& settings);

/// What the scanner says, in the same form.
std::string readByScanner(std::string_view line, const MarkerSettings& settings);

}  // namespace tessaly::grammar::testing
