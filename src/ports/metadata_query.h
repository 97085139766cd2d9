// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"

namespace tessaly::ports {

/// A place below a watched root where something may have changed. Only a hint: what is so is told
/// by looking there.
struct PossibleChange {
    enum class Reach {
        entry,  ///< what the path itself names: it may have come, gone or been written
        tree,   ///< everything at and below the path
    };
    std::string path;  ///< relative to the root, without slashes at its ends; empty: the root
    Reach reach = Reach::entry;

    auto operator<=>(const PossibleChange&) const = default;
};

/// How much of a root reports its changes.
struct WatchState {
    /// Why a part of it does not.
    enum class Cause {
        none,
        blindFileSystem,  ///< it does not report what others than this machine change
        noWatchesLeft,    ///< the kernel's limit for this user is used up
        noRoot,           ///< the root is not there, or cannot be listed
        noEvents,         ///< the kernel offers no events at all
    };
    bool isReady = false;  ///< all folders have been gone through since the start
    std::size_t watchedFolders = 0;
    Cause cause = Cause::none;
    std::string description;  ///< the platform's words about `cause`
    /// The folders, relative to the root, below which nothing is reported. Who wants to know must
    /// look. None lies in another.
    std::vector<std::string> unwatchedTrees;
};

/// Learns of changes below one root, by whomever, on a thread of its own. Never reads a file. The
/// operations may be called from any thread, `start` and `stop` from one at a time.
class MetadataQuery {
public:
    virtual ~MetadataQuery() = default;

    struct Scope {
        std::string root;  ///< absolute
        /// Whether a path below the root, relative to it, matters: a folder that does not is not
        /// watched, an entry that does not is never told. Any thread.
        std::function<bool(std::string_view path, bool isFolder)> covers;
    };

    /// Forgets what was watched, and begins with `scope`. Returns at once. When every folder has
    /// been gone through, the whole root is a possible change, so that who looks then misses
    /// nothing. `onUpdate` is called on the query's thread each time after something was put in
    /// store for `take`, at least once for each burst of events; it must be quick, and not call
    /// back. Failure: there is no thread, and nothing will be told.
    virtual base::Result<base::Done> start(Scope scope, std::function<void()> onUpdate) = 0;

    /// What has been noticed since it was last asked, each place once, by path; what lies in a tree
    /// that is told is not told beside it. Events that were lost make the root a possible change.
    virtual std::vector<PossibleChange> take() = 0;

    virtual WatchState state() = 0;

    /// Tries again, on its thread, to watch what is unwatched; a tree that is watched then is told
    /// as a possible change.
    virtual void retry() = 0;

    /// Ends the thread. `onUpdate` is not called any more once this has returned.
    virtual void stop() = 0;
};

}  // namespace tessaly::ports
