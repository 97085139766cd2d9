// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/text_range.h"
#include "search/folded_text.h"

namespace tessaly::search {

/// The part of a line that a row shows around a match, and where the match lies in it.
struct Excerpt {
    std::string text;
    base::TextRange highlight;  ///< UTF-16 units; empty at the start where there is no match
};

/// `match` is in bytes of `line`, which is not folded; an empty one stands for no match. The text
/// has up to 60 user-perceived characters and no white space of the line's ends; where it is cut,
/// which is never inside of a character, it begins or ends with "…", which counts. The highlight is
/// made of whole characters; a match that is too long is cut at its end.
Excerpt excerptOf(std::string_view line, Stretch match);

}  // namespace tessaly::search
