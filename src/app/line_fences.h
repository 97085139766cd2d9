// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "app/line_look.h"

namespace tessaly::app {

/// The fence that a line opens, three signs or more behind any white space; `outside` for none.
/// What follows backticks holds none, else they are code in the line.
FenceState fenceOpenedBy(std::string_view line);

/// Whether a line closes an open fence: nothing stands in it but three of its signs or more.
bool closesFence(std::string_view line, FenceState open);

/// Whether a line is three signs or more of "-", "*" or "_", all the same, and white space.
bool isRule(std::string_view line);

/// Whether a line is a table's row: it begins with a "|" and holds another.
bool isTableRow(std::string_view line);

}  // namespace tessaly::app
