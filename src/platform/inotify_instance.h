// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/file_descriptor.h"

namespace tessaly::platform {

/// An event of inotify(7): `name` is what it is about in the folder of `watch`; empty: the folder.
struct FolderEvent {
    int watch;
    std::uint32_t mask;
    std::string name;
};

/// An instance of inotify(7), with all its watches and the events in its queue.
class InotifyInstance {
public:
    InotifyInstance();

    /// Negative: there is none, `errno` says why right after construction.
    int fd() const { return _fd.get(); }

    /// Watches a folder; a link at the path's end is refused. Negative: `errno` says why.
    int watch(const std::string& folder, std::uint32_t mask) const;
    void unwatch(int watch) const;

    /// Some of the events that wait, in their order; none when none waits.
    std::vector<FolderEvent> read() const;

private:
    FileDescriptor _fd;
};

}  // namespace tessaly::platform
