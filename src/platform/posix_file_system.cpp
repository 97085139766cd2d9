// SPDX-License-Identifier: MIT
#include "platform/posix_file_system.h"

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"
#include "platform/file_failures.h"
#include "platform/file_reader.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;
using ports::FolderEntry;

namespace {

/// Neither waits for a pipe's other end nor lets a terminal take the process over.
constexpr int readFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr int folderFlags = O_RDONLY | O_CLOEXEC | O_DIRECTORY;

FileDescriptor open(const std::string& path, int flags) {
    return FileDescriptor(uninterrupted([&] { return ::open(path.c_str(), flags); }));
}

FileDescriptor openIn(int folder, const std::string& name, int flags) {
    return FileDescriptor(uninterrupted([&] { return ::openat(folder, name.c_str(), flags); }));
}

Failure readFailure(int error, const std::string& path) {
    return error == EINVAL ? notAFileFailure(path) : errnoFailure(error, path);
}

FolderEntry::Kind kindOfMode(mode_t mode) {
    return S_ISREG(mode)   ? FolderEntry::Kind::file
           : S_ISDIR(mode) ? FolderEntry::Kind::folder
           : S_ISLNK(mode) ? FolderEntry::Kind::link
                           : FolderEntry::Kind::other;
}

/// Some file systems leave the kind out of the folder.
FolderEntry::Kind kindOfEntry(int folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return kindOfMode(static_cast<mode_t>(DTTOIF(entry.d_type)));
    }
    struct stat status;
    const bool known = ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    return known ? kindOfMode(status.st_mode) : FolderEntry::Kind::other;
}

bool isDots(std::string_view name) {
    return name == "." || name == "..";
}

int readEntry(int folder, const FolderEntry& entry, FileReader& reader,
              FileReader::Contents& contents) {
    if (entry.kind != FolderEntry::Kind::file || holdsNul(entry.name)) {
        return EINVAL;
    }
    const FileDescriptor fd = openIn(folder, entry.name, readFlags | O_NOFOLLOW);
    return fd ? reader.read(fd.get(), contents) : errno;
}

}  // namespace

base::Result<std::vector<FolderEntry>> PosixFileSystem::list(const std::string& folder) {
    if (holdsNul(folder)) {
        return nulFailure(folder);
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), ::closedir);
    if (!stream) {
        return errnoFailure(errno, folder);
    }
    std::vector<FolderEntry> entries;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(stream.get());
        if (entry == nullptr) {
            break;
        }
        if (!isDots(entry->d_name)) {
            entries.push_back({entry->d_name, kindOfEntry(::dirfd(stream.get()), *entry)});
        }
    }
    // A listing that broke off must not pass for a shorter folder.
    if (errno != 0) {
        return errnoFailure(errno, folder);
    }
    return entries;
}

base::Result<ports::FileContents> PosixFileSystem::read(const std::string& file) {
    // Asked first, since opening a pipe would already wake a writer that waits at its other end.
    const auto kind = kindOf(file);
    if (!kind) {
        return kind.failure();
    }
    if (*kind != FolderEntry::Kind::file) {
        return *kind == FolderEntry::Kind::folder ? errnoFailure(EISDIR, file)
                                                  : notAFileFailure(file);
    }
    const FileDescriptor fd = open(file, readFlags);
    if (!fd) {
        return errnoFailure(errno, file);
    }
    FileReader reader;
    FileReader::Contents contents;
    if (const int error = reader.read(fd.get(), contents); error != 0) {
        return readFailure(error, file);
    }
    return ports::FileContents{std::string(contents.bytes), contents.stamp};
}

base::Result<Done> PosixFileSystem::readEach(const std::string& folder,
                                             std::span<const FolderEntry> files,
                                             const ports::FileSink& sink) {
    if (holdsNul(folder)) {
        return nulFailure(folder);
    }
    const FileDescriptor fd = open(folder, folderFlags);
    if (!fd) {
        return errnoFailure(errno, folder);
    }
    FileReader reader;
    for (std::size_t index = 0; index < files.size(); ++index) {
        FileReader::Contents contents;
        if (const int error = readEntry(fd.get(), files[index], reader, contents); error != 0) {
            const Failure failure = readFailure(error, folder + "/" + files[index].name);
            sink({index, {}, nullptr, &failure});
        } else {
            sink({index, contents.bytes, &contents.stamp, nullptr});
        }
    }
    return Done{};
}

base::Result<FolderEntry::Kind> PosixFileSystem::kindOf(const std::string& path) {
    if (holdsNul(path)) {
        return nulFailure(path);
    }
    struct stat status;
    if (::stat(path.c_str(), &status) == 0) {
        return kindOfMode(status.st_mode);
    }
    // Below a file, or with a name that no file can have, there is nothing.
    if (errno == ENOTDIR || errno == ENAMETOOLONG) {
        return errnoFailure(errno, path, Failure::Kind::notFound);
    }
    return errnoFailure(errno, path);
}

base::Result<std::string> PosixFileSystem::resolve(const std::string& path) {
    if (holdsNul(path)) {
        return nulFailure(path);
    }
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr), std::free);
    if (!real) {
        return errnoFailure(errno, path);
    }
    return std::string(real.get());
}

}  // namespace tessaly::platform
