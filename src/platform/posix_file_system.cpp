// SPDX-License-Identifier: MIT
#include "platform/posix_file_system.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"
#include "platform/file_failures.h"
#include "platform/file_reader.h"
#include "platform/files_of_folder.h"
#include "platform/folder_stream.h"
#include "platform/folder_survey.h"
#include "platform/open_flags.h"
#include "platform/placeholder.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;
using ports::FolderEntry;

namespace {

constexpr int folderFlags = O_RDONLY | O_CLOEXEC | O_DIRECTORY;

FileDescriptor open(const std::string& path, int flags) {
    return FileDescriptor(uninterrupted([&] { return ::open(path.c_str(), flags); }));
}

Failure readFailure(int error, const std::string& path) {
    return error == EINVAL                         ? notAFileFailure(path)
           : error == FileReader::placeholderError ? placeholderFailure(path)
                                                   : errnoFailure(error, path);
}

/// Some file systems leave the kind out of the folder.
FolderEntry::Kind kindOfEntry(int folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return kindOfMode(static_cast<unsigned>(DTTOIF(entry.d_type)));
    }
    struct stat status;
    const bool known = ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    return known ? kindOfMode(status.st_mode) : FolderEntry::Kind::other;
}

}  // namespace

base::Result<std::vector<FolderEntry>> PosixFileSystem::list(const std::string& folder) {
    if (holdsNul(folder)) {
        return nulFailure(folder);
    }
    FolderStream stream(folder);
    std::vector<FolderEntry> entries;
    while (const dirent* entry = stream.next()) {
        entries.push_back({entry->d_name, kindOfEntry(stream.fd(), *entry)});
    }
    if (stream.error() != 0) {
        return errnoFailure(stream.error(), folder);
    }
    return entries;
}

base::Result<std::vector<ports::SurveyedEntry>> PosixFileSystem::survey(const std::string& folder) {
    return holdsNul(folder) ? nulFailure(folder) : surveyFolder(folder);
}

base::Result<std::vector<std::optional<ports::SurveyedEntry>>> PosixFileSystem::surveyNames(
    const std::string& folder, std::span<const std::string> names) {
    return holdsNul(folder) ? nulFailure(folder) : surveyFolder(folder, names);
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
    FilesOfFolder opened(fd.get(), files);
    for (std::size_t index = 0; index < files.size(); ++index) {
        FileReader::Contents contents;
        const auto [file, openError] = opened.next();
        const auto askAhead = [&opened, at = file.get()] { opened.askAhead(at); };
        const int error = openError != 0 ? openError : reader.read(file.get(), contents, askAhead);
        if (error != 0) {
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
