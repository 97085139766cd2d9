// SPDX-License-Identifier: MIT
#include "platform/new_cache_file.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <unistd.h>
#include <utility>

#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "base/localisation.h"
#include "platform/errno_failure.h"
#include "platform/file_bytes.h"
#include "platform/file_descriptor.h"
#include "platform/file_failures.h"
#include "platform/folder_names.h"

namespace tessaly::platform {

using base::Done;
using base::Failure;

namespace {

constexpr std::size_t bufferSize = 1 << 20;

class LockedNewFile final : public ports::NewCacheFile {
public:
    LockedNewFile(FileDescriptor fd, std::string temporary, std::string file)
        : _fd(std::move(fd)), _temporary(std::move(temporary)), _file(std::move(file)) {
        _buffer.reserve(bufferSize);
    }
    ~LockedNewFile() override {
        if (!_isInPlace && isStillAt(_temporary, _fd.get())) {
            ::unlink(_temporary.c_str());
        }
    }

    base::Result<Done> write(std::string_view bytes) override {
        if (_buffer.size() + bytes.size() > bufferSize) {
            put(_buffer);
            _buffer.clear();
        }
        if (bytes.size() > bufferSize) {
            put(bytes);
        } else {
            _buffer += bytes;
        }
        return resultOf(_error, _temporary);
    }

    base::Result<Done> putInPlace() override {
        put(std::exchange(_buffer, {}));
        // The lock stays until the name has changed: another writer would begin with this file.
        if (_error == 0 && ::rename(_temporary.c_str(), _file.c_str()) != 0) {
            _error = errno;
        }
        _isInPlace = _error == 0;
        return resultOf(_error, _file);
    }

private:
    void put(std::string_view bytes) {
        if (_error == 0) {
            _error = writeAll(_fd.get(), bytes);
        }
    }

    const FileDescriptor _fd;  // the lock goes with it
    const std::string _temporary;
    const std::string _file;
    std::string _buffer;
    int _error = 0;
    bool _isInPlace = false;
};

Failure isBeingWritten(const std::string& file) {
    return {Failure::Kind::exists,
            fmt::format("{}: {}", file, base::tr("another process is writing it"))};
}

/// Nothing: the name has become another file's before the lock was there.
base::Result<std::optional<FileDescriptor>> openLocked(const std::string& temporary) {
    constexpr int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    FileDescriptor fd(uninterrupted([&] { return ::open(temporary.c_str(), flags, 0600); }));
    struct stat status;
    if (!fd || ::fstat(fd.get(), &status) != 0) {
        return errnoFailure(errno, temporary);
    }
    if (!S_ISREG(status.st_mode)) {
        return notAFileFailure(temporary);
    }
    if (uninterrupted([&] { return ::flock(fd.get(), LOCK_EX | LOCK_NB); }) != 0) {
        return errno == EWOULDBLOCK ? isBeingWritten(temporary) : errnoFailure(errno, temporary);
    }
    return isStillAt(temporary, fd.get()) ? std::optional(std::move(fd)) : std::nullopt;
}

}  // namespace

base::Result<std::unique_ptr<ports::NewCacheFile>> beginCacheFile(const std::string& file) {
    const std::string temporary = file + ".writing";
    auto locked = openLocked(temporary);
    while (locked && !*locked) {
        locked = openLocked(temporary);
    }
    if (!locked) {
        return locked.failure();
    }
    FileDescriptor fd = *std::move(*std::move(locked));
    if (::ftruncate(fd.get(), 0) != 0 || ::fchmod(fd.get(), 0600) != 0) {
        return errnoFailure(errno, temporary);
    }
    return std::unique_ptr<ports::NewCacheFile>(
        std::make_unique<LockedNewFile>(std::move(fd), temporary, file));
}

}  // namespace tessaly::platform
