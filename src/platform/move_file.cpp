// SPDX-License-Identifier: MIT
#include "platform/move_file.h"

#include <cerrno>
#include <unistd.h>

#include "platform/errno_failure.h"
#include "platform/file_attributes.h"
#include "platform/file_bytes.h"
#include "platform/file_failures.h"
#include "platform/remove_file.h"
#include "platform/temporary_file.h"

namespace tessaly::platform {

using base::Done;

namespace {

int copyInto(const StillFile& source, const TemporaryFile& copy) {
    const struct stat& status = source.status();
    int error = copy.error();
    error = error != 0 ? error : copyBytes(source.fd(), copy.fd());
    error = error != 0 ? error : copyAttributes(source.fd(), status, copy.fd());
    if (error == 0) {
        // Of a file system that keeps no such dates, none can be asked.
        const timespec times[2] = {status.st_atim, status.st_mtim};
        ::futimens(copy.fd(), times);
    }
    return error != 0 ? error : syncBytes(copy.fd());
}

/// The state of a copy as we have left it.
class Untouched {
public:
    explicit Untouched(int fd) : _fd(fd) { _known = ::fstat(fd, &_status) == 0; }

    /// No, also when it cannot be told.
    bool still() const {
        struct stat now;
        return _known && ::fstat(_fd, &now) == 0 && now.st_size == _status.st_size &&
               now.st_mtim.tv_sec == _status.st_mtim.tv_sec &&
               now.st_mtim.tv_nsec == _status.st_mtim.tv_nsec;
    }

private:
    int _fd;
    struct stat _status {};
    bool _known;
};

base::Result<Done> copyAndRemove(FolderName from, FolderName to, const std::string& path,
                                 const std::string& newPath, const ChangeNames& rename) {
    StillFile source(from, Links::themselves, path);
    if (!source.opened()) {
        return source.opened();
    }
    if (auto held = source.hold(); !held) {
        return held;
    }
    const TemporaryFile copy(to.folder, to.name, 0600);
    int error = copyInto(source, copy);
    const Untouched copied(copy.fd());
    error = error != 0 ? error : rename(copy.name(), to);
    if (error != 0) {
        return errnoFailure(error, newPath);
    }
    syncFolder(to.folder);
    const auto isCopied = [&](int fd) { return holdSameBytes(fd, copy.fd()); };
    auto removed = removeHeld(source, from, isCopied, path, rename);
    // A copy that another program has written meanwhile holds words of its own.
    if (!removed && copied.still() && identityAt(to) == copy.identity()) {
        ::unlinkat(to.folder, to.name, 0);
    }
    return removed;
}

}  // namespace

base::Result<Done> moveFile(const std::string& from, const std::string& to,
                            const ChangeNames& rename) {
    const Place source = placeOf(from);
    const Place target = placeOf(to);
    const FileDescriptor sourceFolder = openFolder(source.folder);
    if (!sourceFolder) {
        return errnoFailure(errno, from);
    }
    const FileDescriptor targetFolder = openFolder(target.folder);
    if (!targetFolder) {
        return errnoFailure(errno, to);
    }
    const FolderName oldName{sourceFolder.get(), source.name.c_str()};
    const FolderName newName{targetFolder.get(), target.name.c_str()};
    const int error = rename(oldName, newName);
    if (error == EXDEV) {
        return copyAndRemove(oldName, newName, from, to, rename);
    }
    if (error == 0) {
        syncFolder(targetFolder.get());
        syncFolder(sourceFolder.get());
    }
    return resultOf(error, error == EEXIST ? to : from);
}

}  // namespace tessaly::platform
