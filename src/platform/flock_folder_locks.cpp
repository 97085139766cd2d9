// SPDX-License-Identifier: MIT
#include "platform/flock_folder_locks.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "base/localisation.h"
#include "base/sha256.h"
#include "platform/errno_failure.h"
#include "platform/file_descriptor.h"
#include "platform/folder_names.h"
#include "platform/lock_record.h"
#include "platform/posix_file_changes.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;

namespace {

using SteadyTime = std::chrono::steady_clock;

constexpr std::size_t nameLength = 16;
constexpr std::chrono::milliseconds firstPause{1};
constexpr std::chrono::milliseconds longestPause{16};

class FlockFolderLock : public ports::FolderLock {
public:
    FlockFolderLock(FileDescriptor fd, LockRecord record)
        : _fd(std::move(fd)), _record(std::move(record)) {}

    std::vector<std::string> unfinished() const override { return _record.unfinished(); }

    base::Result<Done> begin(const std::string& folder) override {
        if (folder.find('\0') != std::string::npos) {
            return errnoFailure(EINVAL, folder.c_str(), Failure::Kind::malformed);
        }
        return _record.add(_fd.get(), folder);
    }

    void finish() override { _record.clear(_fd.get()); }

private:
    FileDescriptor _fd;  // the lock goes with it
    LockRecord _record;
};

/// One path for all paths of one folder, also of one that is not there yet.
base::Result<std::string> resolvedFolder(const std::string& folder) {
    if (folder.find('\0') != std::string::npos) {
        return errnoFailure(EINVAL, folder.c_str(), Failure::Kind::malformed);
    }
    std::error_code error;
    std::string path = std::filesystem::weakly_canonical(folder, error);
    if (error) {
        return errnoFailure(error.value(), folder);
    }
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

FileDescriptor openLockFile(const std::string& file, int flags) {
    return FileDescriptor(
        uninterrupted([&] { return ::open(file.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600); }));
}

/// Nothing: another holds it now. The file is opened anew by each trial, so that one which was
/// deleted is given up, and threads of one process exclude each other.
base::Result<std::optional<FileDescriptor>> tryToLock(const std::string& file) {
    FileDescriptor fd = openLockFile(file, O_RDWR | O_CREAT | O_APPEND);
    if (!fd) {
        return errnoFailure(errno, file);
    }
    if (uninterrupted([&] { return ::flock(fd.get(), LOCK_EX | LOCK_NB); }) != 0) {
        return errno == EWOULDBLOCK ? base::Result<std::optional<FileDescriptor>>(std::nullopt)
                                    : errnoFailure(errno, file);
    }
    return isStillAt(file, fd.get()) ? std::optional(std::move(fd)) : std::nullopt;
}

base::Result<std::optional<FileDescriptor>> waitForLock(const std::string& file,
                                                        std::chrono::milliseconds patience) {
    const SteadyTime::time_point end = SteadyTime::now() + patience;
    std::chrono::milliseconds pause = firstPause;
    for (;;) {
        auto fd = tryToLock(file);
        if (!fd || *fd || SteadyTime::now() >= end) {
            return fd;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, longestPause);
    }
}

std::string lockFileOf(const std::string& lockFolder, const std::string& resolvedFolder) {
    return lockFolder + "/" + base::sha256(resolvedFolder).substr(0, nameLength);
}

}  // namespace

FlockFolderLocks::FlockFolderLocks(std::string folder, std::chrono::milliseconds patience)
    : _folder(std::move(folder)), _patience(patience) {}

base::Result<std::unique_ptr<ports::FolderLock>> FlockFolderLocks::take(const std::string& folder) {
    const auto path = resolvedFolder(folder);
    if (!path) {
        return path.failure();
    }
    if (const auto made = PosixFileChanges().makeFolders(_folder); !made) {
        return made.failure();
    }
    auto waited = waitForLock(lockFileOf(_folder, *path), _patience);
    if (!waited) {
        return waited.failure();
    }
    auto fd = std::move(waited).value();
    if (!fd) {
        return Failure{
            Failure::Kind::unavailable,
            fmt::format("{}: {}", folder, base::tr("another Tessaly process is writing in it"))};
    }
    auto record = LockRecord::read(fd->get(), *path);
    if (!record) {
        return record.failure();
    }
    return std::unique_ptr<ports::FolderLock>(
        std::make_unique<FlockFolderLock>(std::move(*fd), std::move(record).value()));
}

bool FlockFolderLocks::isUnfinished(const std::string& folder) {
    const auto path = resolvedFolder(folder);
    if (!path) {
        return false;
    }
    const FileDescriptor fd = openLockFile(lockFileOf(_folder, *path), O_RDONLY);
    if (!fd || uninterrupted([&] { return ::flock(fd.get(), LOCK_SH | LOCK_NB); }) != 0) {
        return false;
    }
    const auto record = LockRecord::read(fd.get(), *path);
    return record && record->isUnfinished();
}

}  // namespace tessaly::platform
