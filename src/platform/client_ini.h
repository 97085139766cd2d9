// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessaly::platform {

/// A line `key = value` of an INI file. Blanks around both are taken off, nothing else is changed.
struct IniLine {
    std::string_view section;  ///< without brackets; empty before the first
    std::string_view key;
    std::string_view value;
};

/// The lines of `text`, which they are parts of. What is neither section nor line is passed over.
std::vector<IniLine> iniLines(std::string_view text);

/// A value as the desktop clients of Nextcloud and ownCloud write it: in quotes or not, with
/// escapes as \x2f or \xd83d\xdcc1 (UTF-16).
std::string unescaped(std::string_view value);

/// A value without the quotes that may stand around it.
std::string_view unquoted(std::string_view value);

}  // namespace tessaly::platform
