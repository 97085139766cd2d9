// SPDX-License-Identifier: MIT
#include "platform/file_reader.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

#include "platform/file_descriptor.h"

namespace tessaly::platform {

namespace {

constexpr std::size_t usualCapacity = 64 << 10;
/// A buffer above this was needed for a giant, and is not kept for the small ones behind it.
constexpr std::size_t keptCapacity = 1 << 20;

base::Instant instantOf(const statx_timestamp& time) {
    return base::Instant{std::chrono::seconds{time.tv_sec} +
                         std::chrono::nanoseconds{time.tv_nsec}};
}

ports::FileStamp stampOf(const struct statx& status) {
    const bool hasBirth = (status.stx_mask & STATX_BTIME) != 0;
    return {status.stx_ino, status.stx_size, instantOf(status.stx_mtime),
            instantOf(status.stx_ctime), instantOf(hasBirth ? status.stx_btime : status.stx_mtime)};
}

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
    struct statx status;
    if (::statx(fd, "", AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.stx_mode)) {
        return S_ISDIR(status.stx_mode) ? EISDIR : EINVAL;
    }
    if (status.stx_size > ports::maxFileBytes) {
        return EFBIG;
    }
    if (_buffer.capacity > keptCapacity) {
        _buffer = {};
    }
    std::size_t size = 0;
    if (const int error = readToEnd(fd, status.stx_size, size); error != 0) {
        return error;
    }
    contents = {{_buffer.bytes.get(), size}, stampOf(status)};
    return 0;
}

/// Asks for one byte more than expected: when just the expected ones come, that was the end, and
/// the usual file costs one call.
int FileReader::readToEnd(int fd, std::size_t expected, std::size_t& size) {
    if (_buffer.capacity <= expected) {
        grow(expected + 1, 0);
    }
    for (;;) {
        const ssize_t got = uninterrupted(
            [&] { return ::read(fd, _buffer.bytes.get() + size, _buffer.capacity - size); });
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
