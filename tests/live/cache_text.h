// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "store/note_cache.h"

namespace tessaly::tests {

/// All that a cache holds, as words by what it is of: "Notes/a.txt", "Calendar/2019-03-05", "#tag",
/// "@tag", "stray x.txt". Times are in it to the nanosecond; of the files' states it has none.
std::map<std::string, std::string> everythingIn(const store::NoteCache& cache);

/// How one differs from the other, entry by entry; empty: not at all.
std::string difference(const std::map<std::string, std::string>& found,
                       const std::map<std::string, std::string>& wanted);

}  // namespace tessaly::tests
