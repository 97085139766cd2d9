// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::base {

/// The SHA-256 digest of `bytes` (FIPS 180-4) as 64 lower-case hexadecimal digits.
std::string sha256(std::string_view bytes);

}  // namespace tessaly::base
