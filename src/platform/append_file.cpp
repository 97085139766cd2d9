// SPDX-License-Identifier: MIT
#include "platform/append_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include "platform/errno_failure.h"
#include "platform/file_bytes.h"
#include "platform/file_descriptor.h"
#include "platform/file_failures.h"
#include "platform/folder_names.h"

namespace tessaly::platform {

using base::Done;
using ports::Durability;

namespace {

FileDescriptor openToAppend(const std::string& file, int more) {
    const int flags = O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | more;
    return FileDescriptor(uninterrupted([&] { return ::open(file.c_str(), flags, 0600); }));
}

struct Appended {
    FileDescriptor fd;
    bool isNew;
};

Appended openOrMake(const std::string& file) {
    FileDescriptor fd = openToAppend(file, 0);
    if (fd || errno != ENOENT) {
        return {std::move(fd), false};
    }
    fd = openToAppend(file, O_CREAT | O_EXCL);
    if (fd || errno != EEXIST) {
        return {std::move(fd), true};
    }
    return {openToAppend(file, 0), false};
}

/// A new name is put on the disk in any case: what is added later finds a file that is there.
int syncAppended(const std::string& file, const Appended& appended, Durability durability) {
    if (durability == Durability::now &&
        uninterrupted([&] { return ::fdatasync(appended.fd.get()); }) != 0) {
        return errno;
    }
    if (appended.isNew) {
        if (const FileDescriptor folder = openFolder(placeOf(file).folder)) {
            syncFolder(folder.get());
        }
    }
    return 0;
}

}  // namespace

base::Result<Done> appendToFile(const std::string& file, std::string_view bytes,
                                Durability durability) {
    const Appended appended = openOrMake(file);
    struct stat status;
    if (!appended.fd || ::fstat(appended.fd.get(), &status) != 0) {
        return errnoFailure(errno, file);
    }
    if (!S_ISREG(status.st_mode)) {
        return notAFileFailure(file);
    }
    int error = writeAll(appended.fd.get(), bytes);
    error = error != 0 ? error : syncAppended(file, appended, durability);
    if (error != 0) {
        // So that half a line does not stay, for the next one to be added to.
        uninterrupted([&] { return ::ftruncate(appended.fd.get(), status.st_size); });
        if (appended.isNew) {
            ::unlink(file.c_str());
        }
    }
    return resultOf(error, file);
}

}  // namespace tessaly::platform
