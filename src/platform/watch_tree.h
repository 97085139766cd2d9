// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/paths_below.h"

namespace tessaly::platform {

/// Which watch belongs to which folder. A folder has one watch and a watch one folder.
class WatchTree {
public:
    /// Null: not a watch of ours, or not any more. Good until the next change.
    const std::string* folderOf(int watch) const;
    std::optional<int> watchOf(std::string_view folder) const;

    /// A watch that had another folder has moved from there; another watch that the folder had is
    /// forgotten.
    void set(const std::string& folder, int watch);

    void forget(int watch);
    /// Forgets the watches of a folder and of all below it, and returns them.
    std::vector<int> forgetTree(std::string_view folder);

    std::size_t size() const { return _folders.size(); }

private:
    using Watches = ByPath<int>;

    Watches _watches;
    std::unordered_map<int, Watches::iterator> _folders;
};

}  // namespace tessaly::platform
