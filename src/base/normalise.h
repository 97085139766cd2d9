// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::base {

/// Normalisation form C: what two texts must share to count as the same spelling.
std::string nfc(std::string_view text);

/// NFC of the case-folded text: what two file names must share to collide on a file system
/// that ignores case.
std::string foldedForNames(std::string_view text);

}  // namespace tessaly::base
