// SPDX-License-Identifier: MIT
#include "platform/posix_file_changes.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include "platform/append_file.h"
#include "platform/atomic_file.h"
#include "platform/errno_failure.h"
#include "platform/file_bytes.h"
#include "platform/file_failures.h"
#include "platform/folder_names.h"
#include "platform/move_file.h"
#include "platform/posix_file_system.h"
#include "platform/remove_file.h"
#include "platform/replace_file.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;
using ports::FolderEntry;

namespace {

std::string parentOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

/// So that a power cut does not bring back the names that were, or take those that are new.
int syncFolderAt(const std::string& folder) {
    const FileDescriptor fd = openFolder(folder);
    return fd ? syncFolder(fd.get()) : errno;
}

}  // namespace

base::Result<Done> PosixFileChanges::makeFolders(const std::string& folder) {
    if (const auto kind = PosixFileSystem().kindOf(folder); kind) {
        return *kind == FolderEntry::Kind::folder
                   ? base::Result<Done>(Done{})
                   : errnoFailure(ENOTDIR, folder, Failure::Kind::exists);
    } else if (kind.failure().kind != Failure::Kind::notFound) {
        return kind.failure();
    }
    const std::string above = parentOf(folder);
    if (auto made = makeFolders(above); !made) {
        return made;
    }
    if (::mkdir(folder.c_str(), 0700) != 0) {
        // Another process may have been quicker; anything else of that name stands in the way.
        const int error = errno;
        struct stat status;
        const bool there = ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        return there ? base::Result<Done>(Done{}) : errnoFailure(error, folder);
    }
    syncFolderAt(above);
    return Done{};
}

base::Result<Done> PosixFileChanges::create(const std::string& file, std::string_view bytes,
                                            ports::Readers readers, ports::Durability durability) {
    return holdsNul(file) ? nulFailure(file) : writeNewFile(file, bytes, readers, durability);
}

base::Result<Done> PosixFileChanges::replace(const std::string& file,
                                             const ports::FileContents& read,
                                             std::string_view bytes) {
    return holdsNul(file) ? nulFailure(file) : replaceIfStill(file, read, bytes);
}

base::Result<Done> PosixFileChanges::append(const std::string& file, std::string_view bytes,
                                            ports::Durability durability) {
    return holdsNul(file) ? nulFailure(file) : appendToFile(file, bytes, durability);
}

base::Result<Done> PosixFileChanges::sync(const std::string& file) {
    if (holdsNul(file)) {
        return nulFailure(file);
    }
    const FileDescriptor fd(uninterrupted(
        [&] { return ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    if (!fd) {
        return errnoFailure(errno, file);
    }
    const int error = syncBytes(fd.get());
    return resultOf(error != 0 ? error : syncFolderAt(parentOf(file)), file);
}

base::Result<Done> PosixFileChanges::remove(const std::string& file,
                                            const ports::FileContents* read) {
    if (holdsNul(file)) {
        return nulFailure(file);
    }
    if (read != nullptr) {
        return removeIfStill(file, *read);
    }
    if (::unlink(file.c_str()) != 0) {
        return errnoFailure(errno, file);
    }
    syncFolderAt(parentOf(file));
    return Done{};
}

base::Result<Done> PosixFileChanges::move(const std::string& from, const std::string& to) {
    return holdsNul(from) ? nulFailure(from) : holdsNul(to) ? nulFailure(to) : moveFile(from, to);
}

base::Result<Done> PosixFileChanges::removeFolder(const std::string& folder) {
    if (holdsNul(folder)) {
        return nulFailure(folder);
    }
    if (::rmdir(folder.c_str()) != 0) {
        const int error = errno;
        return errnoFailure(error == ENOTEMPTY ? EEXIST : error, folder);
    }
    syncFolderAt(parentOf(folder));
    return Done{};
}

}  // namespace tessaly::platform
