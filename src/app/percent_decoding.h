// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessaly::app {

/// `text` with the bytes that "%41" and the like stand for; "+" stays, and so does a "%" that two
/// hexadecimal digits do not follow. Nothing: the result is not UTF-8 or holds NUL.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace tessaly::app
