// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "search/filter_item.h"

namespace tessaly::search {

/// A filter as a binary property list: an array of dictionaries "param" (text), "value" (text),
/// "display" (boolean). Failure `malformed`: a value is not UTF-8, holds NUL, or is so long that
/// what is written could not be read again.
base::Result<std::string> filterToPlist(const Filter& filter);

/// Reads a binary or XML property list of that form, of at most 1 MB. Other keys of a dictionary
/// are passed over. Failure `malformed`, in words for the user that say which item is wrong and
/// how: of another form, or with an item that cannot be decoded.
base::Result<Filter> filterFromPlist(std::string_view bytes);

}  // namespace tessaly::search
