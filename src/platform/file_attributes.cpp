// SPDX-License-Identifier: MIT
#include "platform/file_attributes.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <unistd.h>

#include <sys/xattr.h>

namespace tessaly::platform {

namespace {

constexpr const char* accessList = "system.posix_acl_access";

void copyExtended(int from, int to, const char* name) {
    const ssize_t size = ::fgetxattr(from, name, nullptr, 0);
    if (size < 0) {
        return;
    }
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t got = ::fgetxattr(from, name, value.data(), value.size());
    if (got >= 0) {
        ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(got), 0);
    }
}

void copyAllExtended(int from, int to) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size <= 0) {
        return;
    }
    std::string names(static_cast<std::size_t>(size), '\0');
    const ssize_t got = ::flistxattr(from, names.data(), names.size());
    names.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
    for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
        copyExtended(from, to, names.c_str() + at);
    }
}

/// The permissions of a file whose group is another one than that which they were given for.
mode_t withoutGroup(mode_t mode) {
    return (mode & ~mode_t{070}) | ((mode & 07) << 3);
}

/// Whether the file now has the group.
bool takeOwner(int fd, const struct stat& status) {
    struct stat now;
    if (::fstat(fd, &now) != 0) {
        return false;
    }
    if (now.st_uid == status.st_uid && now.st_gid == status.st_gid) {
        return true;
    }
    constexpr auto unchanged = static_cast<uid_t>(-1);
    return ::fchown(fd, status.st_uid, status.st_gid) == 0 || now.st_gid == status.st_gid ||
           ::fchown(fd, unchanged, status.st_gid) == 0;
}

/// Some file systems let nobody choose, and give all files the same.
int givePermissions(int fd, mode_t mode) {
    if (::fchmod(fd, mode) == 0) {
        return 0;
    }
    const int error = errno;
    struct stat now;
    return ::fstat(fd, &now) == 0 && (now.st_mode & 07777) == mode ? 0 : error;
}

}  // namespace

int copyAttributes(int from, const struct stat& status, int to) {
    // First, while the file still may be written by us; permissions last, since a change of the
    // owner takes some away.
    // A folder's default list would let in others than the file did.
    ::fremovexattr(to, accessList);
    copyAllExtended(from, to);
    const bool hasGroup = takeOwner(to, status);
    const mode_t mode = status.st_mode & 07777;
    return givePermissions(to, hasGroup ? mode : withoutGroup(mode));
}

}  // namespace tessaly::platform
