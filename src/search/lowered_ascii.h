// SPDX-License-Identifier: MIT
#pragma once

namespace tessaly::search {

/// An ASCII capital as the small letter; any other byte as it is.
constexpr char loweredAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

}  // namespace tessaly::search
