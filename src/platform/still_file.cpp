// SPDX-License-Identifier: MIT
#include "platform/still_file.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>

#include "platform/errno_failure.h"
#include "platform/file_failures.h"
#include "platform/placeholder.h"

namespace tessaly::platform {

using base::Done;

namespace {

/// A program that writes a file as a whole has it open for less; one that logs to it, for ever.
constexpr std::chrono::milliseconds longestWait{1000};

}  // namespace

StillFile::StillFile(FolderName name, Links links, const std::string& path)
    : _links(links), _path(path), _opened(open(name)) {}

base::Result<Done> StillFile::open(FolderName name) {
    const bool follow = _links == Links::followed;
    // Asked first, since opening a pipe would already wake a writer that waits at its other end.
    if (::fstatat(name.folder, name.name, &_status, follow ? 0 : AT_SYMLINK_NOFOLLOW) != 0) {
        return errnoFailure(errno, _path);
    }
    if (!S_ISREG(_status.st_mode)) {
        return S_ISDIR(_status.st_mode) ? errnoFailure(EISDIR, _path) : notAFileFailure(_path);
    }
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (follow ? 0 : O_NOFOLLOW);
    _fd = FileDescriptor(uninterrupted([&] { return ::openat(name.folder, name.name, flags); }));
    if (!_fd || ::fstat(_fd.get(), &_status) != 0) {
        return errnoFailure(errno, _path);
    }
    const bool isPlaceholder = _status.st_size == placeholderSize && hasPlaceholderMark(_fd.get());
    return isPlaceholder ? base::Result<Done>(placeholderFailure(_path)) : Done{};
}

base::Result<Done> StillFile::hold() {
    _lease.emplace(_fd.get());
    return _lease->take(longestWait) == FileLease::State::busy
               ? base::Result<Done>(busyFailure(_path))
               : Done{};
}

base::Result<Done> StillFile::check(FolderName name, const Expected& expected) const {
    const auto there = identityAt(name, _links);
    if (!there) {
        return errnoFailure(errno, _path);
    }
    const bool still =
        there == identityOf(_status) && expected(_fd.get()) && !(_lease && _lease->isWanted());
    return still ? base::Result<Done>(Done{}) : changedFailure(_path);
}

}  // namespace tessaly::platform
