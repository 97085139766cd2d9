// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/list_feed.h"

namespace tessaly::app {

/// What stands where a list has no rows.
struct EmptyList {
    std::string title;
    std::vector<std::string> hints;  ///< what to try, a sentence each
};

/// Nothing is known yet of a list that is not final and has no rows: it has no words.
EmptyList emptyWords(const ListView& view);

/// "37 results in 12 notes"; where more were found than are shown, how many are.
std::string countWords(const ListView& view);

/// What the list is called.
std::string titleOf(const ListRequest& request);

}  // namespace tessaly::app
