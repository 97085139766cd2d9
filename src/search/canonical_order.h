// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::search {

/// The text's canonical decomposition (NFD); bytes that are no UTF-8 stay. ICU takes quadratic time
/// for thousands of marks on one letter that are out of order; this does not, and what it returns
/// ICU normalises in linear time.
std::string inCanonicalOrder(std::string_view text);

}  // namespace tessaly::search
