// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

struct UBreakIterator;  // ICU's, for <unicode/ubrk.h>

namespace tessaly::base {

/// Steps over the user-perceived characters of `text`, which outlives its use, from its start; in
/// bytes. It takes long to make, so each thread has one, which the next call in the thread gives to
/// another text. Null without ICU's data: then every code point counts as a character.
UBreakIterator* characterIterator(std::string_view text);

}  // namespace tessaly::base
