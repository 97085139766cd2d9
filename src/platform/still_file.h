// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

#include <sys/stat.h>

#include "base/failure.h"
#include "platform/file_descriptor.h"
#include "platform/file_lease.h"
#include "platform/folder_names.h"

namespace tessaly::platform {

/// A regular file that is about to be replaced or removed, and must stand still for that. Failures
/// are `changed` when it does not, and `unavailable` when another program keeps it open for
/// writing.
class StillFile {
public:
    /// Opens what `name` leads to. `path` is for the words of failures.
    StillFile(FolderName name, Links links, const std::string& path);

    /// Why it could not be opened.
    const base::Result<base::Done>& opened() const { return _opened; }
    int fd() const { return _fd.get(); }  ///< open for reading only
    const struct stat& status() const { return _status; }

    /// Waits until no program has it open for writing, and from then on lets none.
    base::Result<base::Done> hold();

    /// Whether the bytes of an open file are what they must be.
    using Expected = std::function<bool(int fd)>;

    /// Whether `name` leads to this file, its bytes are as expected, and no program waits to write.
    base::Result<base::Done> check(FolderName name, const Expected& expected) const;

    /// Lets other programs write it again.
    void release() { _lease.reset(); }

private:
    base::Result<base::Done> open(FolderName name);

    Links _links;
    std::string _path;
    FileDescriptor _fd{-1};
    struct stat _status {};
    std::optional<FileLease> _lease;
    base::Result<base::Done> _opened;
};

}  // namespace tessaly::platform
