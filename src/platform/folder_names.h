// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

#include <sys/stat.h>

#include "platform/file_descriptor.h"

namespace tessaly::platform {

/// The names in open folders, and what they lead to. Numbers returned are 0 or the error's.

struct Place {
    std::string folder;
    std::string name;
};
Place placeOf(const std::string& file);

/// A name in a folder that is open.
struct FolderName {
    int folder;
    const char* name;
};

/// What tells one file from all others that are there at the same time.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const FileIdentity&) const = default;
};
FileIdentity identityOf(const struct stat& status);

enum class Links { followed, themselves };

/// Nothing, with `errno`, when there is nothing of that name.
std::optional<FileIdentity> identityAt(FolderName at, Links links = Links::themselves);

/// Whether the file that is open as `fd` is what `path` names, a link not followed.
bool isStillAt(const std::string& path, int fd);

/// Whether there is nothing of that name.
bool isGone(FolderName at);

FileDescriptor openFolder(const std::string& folder);

/// Puts the names on the disk. A file system that knows no such thing is no error.
int syncFolder(int folder);

/// Gives a file another name if that is free (`EEXIST` else), also where the file system has no
/// such rename: through a link, or else through an empty file of ours that takes the name first.
int giveFreeName(FolderName from, FolderName to);

/// Gives a file another name, whatever stands there.
int giveName(FolderName from, FolderName to);

/// A step that changes two names, such as the ones above and below: 0 or the error's number.
using ChangeNames = std::function<int(FolderName one, FolderName other)>;

/// Exchanges two names in one step.
int exchangeNames(FolderName one, FolderName other);

/// Whether an error of `exchangeNames` says that the file system has no such thing.
bool isUnsupported(int error);

}  // namespace tessaly::platform
