// SPDX-License-Identifier: MIT
#include "platform/file_reader.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>
#include <sys/uio.h>

#include "platform/file_descriptor.h"
#include "platform/file_stamp.h"
#include "platform/placeholder.h"

namespace tessaly::platform {

namespace {

constexpr std::size_t usualCapacity = 64 << 10;
/// A buffer above this was needed for a giant, and is not kept for the small ones behind it.
constexpr std::size_t keptCapacity = 1 << 20;
constexpr off_t wherePositioned = -1;

}  // namespace

FileReader::Buffer& FileReader::threadBuffer() {
    thread_local Buffer buffer;
    return buffer;
}

FileReader::FileReader() : _buffer(std::exchange(threadBuffer(), {})) {}

FileReader::~FileReader() {
    if (_buffer.capacity <= keptCapacity) {
        threadBuffer() = std::move(_buffer);
    }
}

int FileReader::read(int fd, Contents& contents) {
    std::size_t size = 0;
    int error = prepare(fd, contents.stamp);
    error =
        error != 0 ? error : readToEnd(contents.stamp.size, size, [fd](char* to, std::size_t most) {
            return ::read(fd, to, most);
        });
    contents.bytes = {_buffer.bytes.get(), size};
    return error;
}

int FileReader::read(int fd, Contents& contents, const std::function<void()>& beforeWaiting) {
    std::size_t size = 0;
    bool mayWait = !_canAskMemory;
    const auto readSome = [&](char* to, std::size_t most) {
        const iovec piece{to, most};
        const ssize_t got = mayWait ? -1 : ::preadv2(fd, &piece, 1, wherePositioned, RWF_NOWAIT);
        if (got >= 0) {
            return got;
        }
        if (!mayWait && errno == EAGAIN) {
            beforeWaiting();
        } else if (!mayWait && errno == EOPNOTSUPP) {
            _canAskMemory = false;
        }
        mayWait = true;
        return ::read(fd, to, most);
    };
    int error = prepare(fd, contents.stamp);
    error = error != 0 ? error : readToEnd(contents.stamp.size, size, readSome);
    contents.bytes = {_buffer.bytes.get(), size};
    return error;
}

int FileReader::prepare(int fd, ports::FileStamp& stamp) {
    struct statx status;
    if (::statx(fd, "", AT_EMPTY_PATH, stampFields, &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.stx_mode)) {
        return S_ISDIR(status.stx_mode) ? EISDIR : EINVAL;
    }
    if (status.stx_size > ports::maxFileBytes) {
        return EFBIG;
    }
    if (status.stx_size == placeholderSize && hasPlaceholderMark(fd)) {
        return placeholderError;
    }
    if (_buffer.capacity > keptCapacity) {
        _buffer = {};
    }
    stamp = stampOf(status);
    return 0;
}

/// Asks for one byte more than expected: when just the expected ones come, that was the end, and
/// the usual file costs one call.
template <class ReadSome>
int FileReader::readToEnd(std::size_t expected, std::size_t& size, const ReadSome& readSome) {
    if (_buffer.capacity <= expected) {
        grow(expected + 1, 0);
    }
    for (;;) {
        const ssize_t got = uninterrupted(
            [&] { return readSome(_buffer.bytes.get() + size, _buffer.capacity - size); });
        if (got < 0) {
            return errno;
        }
        size += static_cast<std::size_t>(got);
        if (size > ports::maxFileBytes) {
            return EFBIG;
        }
        if (got == 0 || (size == expected && size < _buffer.capacity)) {
            return 0;
        }
        if (size == _buffer.capacity) {
            grow(size * 2, size);
        }
    }
}

void FileReader::grow(std::size_t capacity, std::size_t used) {
    const std::size_t enough = std::max(capacity, usualCapacity);
    std::unique_ptr<char[]> bytes(new char[enough]);
    std::copy_n(_buffer.bytes.get(), used, bytes.get());
    _buffer = {std::move(bytes), enough};
}

}  // namespace tessaly::platform
