// SPDX-License-Identifier: MIT
#include "platform/unwatched_trees.h"

#include <utility>

namespace tessaly::platform {

using Cause = UnwatchedTrees::Cause;

void UnwatchedTrees::add(const std::string& folder, Cause cause, std::string description) {
    _reasons.insert_or_assign(folder, Reason{cause, std::move(description)});
}

void UnwatchedTrees::remove(std::string_view folder) {
    const auto found = _reasons.find(folder);
    if (found != _reasons.end()) {
        _reasons.erase(found);
    }
}

void UnwatchedTrees::removeTree(std::string_view folder) {
    remove(folder);
    const auto [first, last] = below(_reasons, folder);
    _reasons.erase(first, last);
}

bool UnwatchedTrees::holds(std::string_view folder, Cause cause) const {
    const auto found = _reasons.find(folder);
    return found != _reasons.end() && found->second.cause == cause;
}

std::vector<std::string> UnwatchedTrees::ofCause(Cause cause, std::string_view folder) const {
    std::vector<std::string> folders;
    if (holds(folder, cause)) {
        folders.emplace_back(folder);
    }
    const auto [first, last] = below(_reasons, folder);
    for (auto each = first; each != last; ++each) {
        if (each->second.cause == cause) {
            folders.push_back(each->first);
        }
    }
    return folders;
}

// What the user can mend weighs more than what he cannot; the causes stand in that order.
void UnwatchedTrees::describeIn(ports::WatchState& state) const {
    for (const auto& [folder, reason] : _reasons) {
        if (reason.cause > state.cause) {
            state.cause = reason.cause;
            state.description = reason.description;
        }
        if (reason.cause != Cause::none && !isInAnother(folder)) {
            state.unwatchedTrees.push_back(folder);
        }
    }
}

bool UnwatchedTrees::isInAnother(std::string_view folder) const {
    return anyAbove(folder, [this](std::string_view above) {
        const auto found = _reasons.find(above);
        return found != _reasons.end() && found->second.cause != Cause::none;
    });
}

}  // namespace tessaly::platform
