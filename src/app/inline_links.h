// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "app/inline_parts.h"

namespace tessaly::app {

/// "[title](address)", "![title](file)" and "[[title]]" in a text, in order. Titles hold no
/// brackets; an address holds parentheses in pairs only, and is not empty, nor is a title but an
/// image's. Linear.
InlineParts findLinks(std::string_view text);

/// Addresses that stand in a text as they are, "https://…" of whatever scheme, in order, without
/// the punctuation behind them. Linear.
InlineParts findAddresses(std::string_view text);

}  // namespace tessaly::app
