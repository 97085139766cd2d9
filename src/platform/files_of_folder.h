// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>
#include <span>

#include "platform/file_descriptor.h"
#include "ports/file_system.h"

namespace tessaly::platform {

/// The files of one folder, opened one after another. Once they turn out not to be in memory, those
/// that come next are opened ahead and their bytes asked for, so that the disk has many to fetch at
/// a time.
class FilesOfFolder {
public:
    /// All of these outlive this object.
    FilesOfFolder(int folder, std::span<const ports::FolderEntry> files)
        : _folder(folder), _files(files) {}

    /// The file of the next index, from 0 on, open for reading.
    struct Opened {
        FileDescriptor fd;
        int error;  ///< 0, or why it is not open: `EINVAL` for what is no regular file by its entry
    };
    Opened next();

    /// Asks for the bytes of the file that `next` gave last, and of some that follow, now and with
    /// each further `next`.
    void askAhead(int fd);

private:
    Opened open(std::size_t index) const;
    void fillAhead();

    int _folder;
    std::span<const ports::FolderEntry> _files;
    std::size_t _next = 0;  ///< behind those that are open
    std::deque<Opened> _ahead;
    bool _isAhead = false;
};

}  // namespace tessaly::platform
