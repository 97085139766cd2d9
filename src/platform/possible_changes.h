// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "platform/paths_below.h"
#include "ports/metadata_query.h"

namespace tessaly::platform {

/// Places where something may have changed, each once; what lies in a tree is not held beside it.
class PossibleChanges {
public:
    /// More places than these are the whole root.
    static constexpr std::size_t most = 8192;

    void add(ports::PossibleChange change);
    bool empty() const { return _places.empty(); }

    /// All, by path; none are left.
    std::vector<ports::PossibleChange> take();

private:
    ByPath<ports::PossibleChange::Reach> _places;
};

}  // namespace tessaly::platform
