// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "search/filter_item.h"

namespace tessaly::search {

/// A filter as a binary property list: an array of dictionaries "param" (text), "value" (text),
/// "display" (boolean).
std::string filterToPlist(const Filter& filter);

/// Reads a binary or XML property list of that form. Failure `malformed`, in words for the user
/// that say which item is wrong and how: of another form, or with an item that cannot be decoded.
base::Result<Filter> filterFromPlist(std::string_view bytes);

}  // namespace tessaly::search
