// SPDX-License-Identifier: MIT
#include "platform/files_of_folder.h"

#include <cerrno>
#include <fcntl.h>
#include <utility>

#include "platform/file_failures.h"
#include "platform/open_flags.h"

namespace tessaly::platform {

namespace {

/// Files open at a time for each thread that reads; a process has some thousand in all.
constexpr std::size_t maxAhead = 32;

void ask(int fd) {
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_WILLNEED);
}

}  // namespace

FilesOfFolder::Opened FilesOfFolder::next() {
    if (_ahead.empty()) {
        return open(_next++);
    }
    Opened opened = std::move(_ahead.front());
    _ahead.pop_front();
    fillAhead();
    return opened;
}

void FilesOfFolder::askAhead(int fd) {
    if (!std::exchange(_isAhead, true)) {
        ask(fd);
        fillAhead();
    }
}

void FilesOfFolder::fillAhead() {
    for (; _ahead.size() < maxAhead && _next < _files.size(); ++_next) {
        _ahead.push_back(open(_next));
        if (_ahead.back().error == 0) {
            ask(_ahead.back().fd.get());
        }
    }
}

FilesOfFolder::Opened FilesOfFolder::open(std::size_t index) const {
    const ports::FolderEntry& entry = _files[index];
    if (entry.kind != ports::FolderEntry::Kind::file || holdsNul(entry.name)) {
        return {FileDescriptor(-1), EINVAL};
    }
    FileDescriptor fd(uninterrupted(
        [&] { return ::openat(_folder, entry.name.c_str(), readFlags | O_NOFOLLOW); }));
    const int error = fd ? 0 : errno;
    return {std::move(fd), error};
}

}  // namespace tessaly::platform
