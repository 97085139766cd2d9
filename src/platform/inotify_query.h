// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/file_descriptor.h"
#include "platform/folder_watch.h"
#include "platform/possible_changes.h"
#include "ports/metadata_query.h"

namespace tessaly::platform {

/// Watches by inotify(7), one watch a folder. The root may be a link; below it links are not
/// followed.
///
/// A tree on a file system that reports local changes alone is watched, and is an unwatched tree
/// all the same. A folder that may not be read is no unwatched tree, since to look there tells
/// nothing either: that it may be read again is reported. A file system that is mounted over a
/// watched folder is not noticed. `retry` also finds out whether the root's path leads elsewhere
/// now: renaming a folder above it causes no event. While a folder of a network file system hangs,
/// so does `stop`.
class InotifyQuery final : public ports::MetadataQuery {
public:
    explicit InotifyQuery(WatchOptions options = {});
    ~InotifyQuery() override;
    InotifyQuery(const InotifyQuery&) = delete;
    InotifyQuery& operator=(const InotifyQuery&) = delete;

    base::Result<base::Done> start(Scope scope, std::function<void()> onUpdate) override;
    std::vector<ports::PossibleChange> take() override;
    ports::WatchState state() override;
    void retry() override;
    void stop() override;

private:
    base::Result<base::Done> prepare();
    void run(Scope scope, const std::function<void()>& onUpdate);
    void awaitEvents(const FolderWatch& watch) const;
    bool takeRetry();
    /// Puts in store what was found, and says whether anything was.
    bool publish(FolderWatch& watch);
    void wakeUp();

    const WatchOptions _options;
    std::thread _thread;
    std::atomic<bool> _isStopping = false;

    std::mutex _mutex;         ///< guards what follows
    FileDescriptor _wake{-1};  ///< made by the first start, constant from then on
    bool _isRetryWanted = false;
    PossibleChanges _changes;
    ports::WatchState _state;
};

}  // namespace tessaly::platform
