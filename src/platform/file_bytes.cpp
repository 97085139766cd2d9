// SPDX-License-Identifier: MIT
#include "platform/file_bytes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <unistd.h>

#include "platform/file_descriptor.h"

namespace tessaly::platform {

namespace {

constexpr std::size_t chunkSize = 64 << 10;
using Chunk = std::array<char, chunkSize>;

/// A whole chunk of the file from `offset` on, less only at its end; nothing when it cannot be
/// read.
std::optional<std::string_view> readChunk(int fd, std::size_t offset, Chunk& chunk) {
    std::size_t size = 0;
    while (size < chunk.size()) {
        const ssize_t got = uninterrupted([&] {
            return ::pread(fd, chunk.data() + size, chunk.size() - size,
                           static_cast<off_t>(offset + size));
        });
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            break;
        }
        size += static_cast<std::size_t>(got);
    }
    return std::string_view(chunk.data(), size);
}

/// `expected(offset)` gives what must stand there: a chunk, less only at the end.
template <class Expected>
bool holdsChunks(int fd, Expected expected) {
    Chunk chunk;
    for (std::size_t offset = 0;; offset += chunk.size()) {
        const std::optional<std::string_view> found = readChunk(fd, offset, chunk);
        if (!found || found != expected(offset)) {
            return false;
        }
        if (found->size() < chunk.size()) {
            return true;
        }
    }
}

}  // namespace

int writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = uninterrupted([&] { return ::write(fd, bytes.data(), bytes.size()); });
        if (put < 0) {
            return errno;
        }
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
    return 0;
}

int copyBytes(int from, int to) {
    Chunk chunk;
    for (;;) {
        const ssize_t got = uninterrupted([&] { return ::read(from, chunk.data(), chunk.size()); });
        if (got <= 0) {
            return got == 0 ? 0 : errno;
        }
        if (const int error = writeAll(to, {chunk.data(), static_cast<std::size_t>(got)})) {
            return error;
        }
    }
}

bool holdsBytes(int fd, std::string_view bytes) {
    return holdsChunks(fd, [&](std::size_t offset) {
        return std::optional(bytes.substr(std::min(offset, bytes.size()), chunkSize));
    });
}

bool holdSameBytes(int one, int other) {
    Chunk chunk;
    return holdsChunks(one, [&](std::size_t offset) { return readChunk(other, offset, chunk); });
}

int syncBytes(int fd) {
    return uninterrupted([&] { return ::fsync(fd); }) == 0 ? 0 : errno;
}

}  // namespace tessaly::platform
