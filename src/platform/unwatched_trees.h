// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/paths_below.h"
#include "ports/metadata_query.h"

namespace tessaly::platform {

/// The folders below which changes are not reported, and why. `Cause::none` stands for a folder
/// that must not be read: looking there tells nothing either, and when that changes, it is reported
/// by the folder above.
class UnwatchedTrees {
public:
    using Cause = ports::WatchState::Cause;

    void add(const std::string& folder, Cause cause, std::string description);
    void remove(std::string_view folder);
    void removeTree(std::string_view folder);

    bool holds(std::string_view folder, Cause cause) const;
    /// Those of a cause that are `folder` or lie below it.
    std::vector<std::string> ofCause(Cause cause, std::string_view folder) const;

    /// Fills in what is unwatched and why; of several causes the one that weighs most.
    void describeIn(ports::WatchState& state) const;

private:
    struct Reason {
        Cause cause;
        std::string description;
    };
    bool isInAnother(std::string_view folder) const;

    ByPath<Reason> _reasons;
};

}  // namespace tessaly::platform
