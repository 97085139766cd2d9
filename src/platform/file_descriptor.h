// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace tessaly::platform {

/// An open file of the kernel's, closed with this object. Negative: none, `errno` says why.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : _fd(fd) {}
    ~FileDescriptor() {
        if (_fd >= 0) {
            ::close(_fd);
        }
    }
    FileDescriptor(FileDescriptor&& other) noexcept : _fd(std::exchange(other._fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(_fd, other._fd);
        return *this;
    }

    explicit operator bool() const { return _fd >= 0; }
    int get() const { return _fd; }

private:
    int _fd;
};

/// The result of a system call that is made again for as long as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

}  // namespace tessaly::platform
