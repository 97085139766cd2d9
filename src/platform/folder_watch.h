// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "platform/blind_file_systems.h"
#include "platform/folder_names.h"
#include "platform/inotify_instance.h"
#include "platform/possible_changes.h"
#include "platform/unwatched_trees.h"
#include "platform/watch_tree.h"
#include "ports/metadata_query.h"

namespace tessaly::platform {

struct WatchOptions {
    std::size_t maxWatches = std::numeric_limits<std::size_t>::max();
    /// As `blindFileSystemOf`.
    std::function<std::string_view(int folder)> blindFileSystem = blindFileSystemOf;
};

/// The watches of one root and what their events tell. One thread.
///
/// A folder is watched before it is listed, and told when everything below it is watched. So what
/// is made meanwhile is seen in the listing, by an event, or by whoever looks after the telling.
/// Events tell of the past: a folder may be elsewhere already. Then an event that tells so stands
/// in the queue, and the folder is looked for again when that comes.
class FolderWatch {
public:
    /// `isCancelled` is asked between folders; once true, nothing is of any worth any more.
    FolderWatch(ports::MetadataQuery::Scope scope, WatchOptions options,
                std::function<bool()> isCancelled);

    /// Watches everything, from nothing, and tells the root.
    void begin();

    /// Readable when there are events; negative when there never are. May be another one after each
    /// operation.
    int fd() const { return _inotify ? _inotify->fd() : -1; }
    /// Works on the events of one read.
    void handleEvents();

    /// Tries to watch what is unwatched, and tells what is watched then. Where the root's path
    /// leads elsewhere by now, everything begins again.
    void retry();

    std::vector<ports::PossibleChange> takeFound() { return _found.take(); }
    ports::WatchState state() const;

private:
    using Cause = ports::WatchState::Cause;

    struct Reached {
        std::string folder;
        std::optional<dev_t> device;  ///< of the folder above
    };

    void watchRoot();
    bool isRootWatched() const;
    void giveUp(Cause cause, std::string description);

    void watchTree(const std::string& folder);
    void watchFolder(const Reached& reached, std::vector<Reached>& pending);
    int addWatch(const std::string& folder) const;
    int listFolder(const Reached& reached, std::vector<Reached>& pending);
    void leaveOut(const std::string& folder, int error);
    void dropTree(std::string_view folder);
    void tryAgain(Cause cause, std::string_view folder);

    /// These return whether the events that follow still belong to the watches.
    bool handle(const FolderEvent& event);
    bool handleFolderItself(const FolderEvent& event, const std::string& folder);
    void handleEntry(std::string path, std::uint32_t mask);
    void handleSubfolder(const std::string& path, std::uint32_t mask);

    void tell(std::string path, ports::PossibleChange::Reach reach);
    std::string absolute(std::string_view folder) const;

    const ports::MetadataQuery::Scope _scope;
    const WatchOptions _options;
    const std::function<bool()> _isCancelled;

    std::string _root;  ///< resolved; empty: not there
    FileIdentity _rootIdentity;
    std::optional<InotifyInstance> _inotify;
    WatchTree _tree;
    UnwatchedTrees _unwatched;
    PossibleChanges _found;
};

}  // namespace tessaly::platform
