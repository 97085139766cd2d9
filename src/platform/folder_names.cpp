// SPDX-License-Identifier: MIT
#include "platform/folder_names.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tessaly::platform {

namespace {

int resultNumber(int result) {
    return result == 0 ? 0 : errno;
}

/// A link that cannot take the old name away must not stay beside it.
int moveThroughLink(FolderName from, FolderName to) {
    if (::linkat(from.folder, from.name, to.folder, to.name, 0) != 0) {
        return errno;
    }
    if (::unlinkat(from.folder, from.name, 0) == 0) {
        return 0;
    }
    const int error = errno;
    ::unlinkat(to.folder, to.name, 0);
    return error;
}

int moveOverReservation(FolderName from, FolderName to) {
    const FileDescriptor reserved(uninterrupted([&] {
        return ::openat(to.folder, to.name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    }));
    if (!reserved) {
        return errno;
    }
    const int error = giveName(from, to);
    if (error != 0) {
        ::unlinkat(to.folder, to.name, 0);
    }
    return error;
}

}  // namespace

Place placeOf(const std::string& file) {
    const auto slash = file.find_last_of('/');
    return {slash == 0 ? "/" : file.substr(0, slash), file.substr(slash + 1)};
}

FileIdentity identityOf(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

std::optional<FileIdentity> identityAt(FolderName at, Links links) {
    struct stat status;
    const int flags = links == Links::themselves ? AT_SYMLINK_NOFOLLOW : 0;
    if (::fstatat(at.folder, at.name, &status, flags) != 0) {
        return std::nullopt;
    }
    return identityOf(status);
}

bool isStillAt(const std::string& path, int fd) {
    struct stat status;
    return ::fstat(fd, &status) == 0 && identityAt({AT_FDCWD, path.c_str()}) == identityOf(status);
}

bool isGone(FolderName at) {
    return !identityAt(at) && errno == ENOENT;
}

FileDescriptor openFolder(const std::string& folder) {
    return FileDescriptor(
        uninterrupted([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

int syncFolder(int folder) {
    const int error = resultNumber(uninterrupted([&] { return ::fsync(folder); }));
    return isUnsupported(error) ? 0 : error;
}

// Renames are not made again after EINTR: a second exchange would undo the first.

int giveFreeName(FolderName from, FolderName to) {
    int error =
        resultNumber(::renameat2(from.folder, from.name, to.folder, to.name, RENAME_NOREPLACE));
    if (isUnsupported(error)) {
        error = moveThroughLink(from, to);
    }
    return isUnsupported(error) ? moveOverReservation(from, to) : error;
}

int giveName(FolderName from, FolderName to) {
    return resultNumber(::renameat(from.folder, from.name, to.folder, to.name));
}

int exchangeNames(FolderName one, FolderName other) {
    return resultNumber(
        ::renameat2(one.folder, one.name, other.folder, other.name, RENAME_EXCHANGE));
}

bool isUnsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

}  // namespace tessaly::platform
