// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::store {

/// What a text has around its lines.
struct LineEnds {
    bool hasByteOrderMark = false;
    bool isCarriageReturn = false;  ///< more of its lines end in "\r\n" than in "\n"
};

LineEnds lineEndsOf(std::string_view text);

/// The text without byte-order mark, each "\r\n" as "\n".
std::string plainText(std::string_view text);

/// A plain text with these ends.
std::string withLineEnds(std::string_view plain, LineEnds ends);

}  // namespace tessaly::store
