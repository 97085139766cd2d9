// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "search/folded_text.h"

namespace tessaly::search {

/// Where in a line (folded, or in need of no folding) the tag or mention `token` (folded, with its
/// sign) stands: as it is, with others below it ("#a/b" for "#a"), or with an argument. Nothing
/// where it does not, or only as a part of another. Folding moves no border of a tag: what is white
/// space, punctuation or a digit stays so, and nothing else becomes it.
std::optional<Stretch> findTag(std::string_view line, std::string_view token);

}  // namespace tessaly::search
