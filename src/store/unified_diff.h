// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::store {

/// The change from one text to another in the unified format that `patch` reads, three lines of
/// context, "\ No newline at end of file" where it belongs. A name that is empty stands for a file
/// that is not there ("/dev/null"). Empty when the texts are equal.
std::string unifiedDiff(std::string_view oldName, std::string_view oldText,
                        std::string_view newName, std::string_view newText);

}  // namespace tessaly::store
