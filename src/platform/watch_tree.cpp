// SPDX-License-Identifier: MIT
#include "platform/watch_tree.h"

namespace tessaly::platform {

const std::string* WatchTree::folderOf(int watch) const {
    const auto found = _folders.find(watch);
    return found != _folders.end() ? &found->second->first : nullptr;
}

std::optional<int> WatchTree::watchOf(std::string_view folder) const {
    const auto found = _watches.find(folder);
    return found != _watches.end() ? std::optional(found->second) : std::nullopt;
}

void WatchTree::set(const std::string& folder, int watch) {
    if (const auto before = watchOf(folder)) {
        forget(*before);
    }
    forget(watch);
    _folders[watch] = _watches.emplace(folder, watch).first;
}

void WatchTree::forget(int watch) {
    const auto found = _folders.find(watch);
    if (found != _folders.end()) {
        _watches.erase(found->second);
        _folders.erase(found);
    }
}

std::vector<int> WatchTree::forgetTree(std::string_view folder) {
    std::vector<int> watches;
    if (const auto top = watchOf(folder)) {
        watches.push_back(*top);
    }
    const auto [first, last] = below(_watches, folder);
    for (auto each = first; each != last; ++each) {
        watches.push_back(each->second);
    }
    for (const int watch : watches) {
        forget(watch);
    }
    return watches;
}

}  // namespace tessaly::platform
