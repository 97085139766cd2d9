// SPDX-License-Identifier: MIT
#include "platform/line_socket.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>

#include <sys/socket.h>
#include <sys/un.h>

namespace tessaly::platform {

namespace {

int connectTo(int fd, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return ENAMETOOLONG;
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    return uninterrupted([&] { return ::connect(fd, general, sizeof address); }) == 0 ? 0 : errno;
}

}  // namespace

LineSocket::LineSocket(const std::string& path, Deadline deadline)
    : _fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)), _deadline(deadline) {
    _error = _fd ? connectTo(_fd.get(), path) : errno;
}

bool LineSocket::send(std::string_view bytes) {
    while (_error == 0 && !bytes.empty()) {
        const ssize_t sent = uninterrupted(
            [&] { return ::send(_fd.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL); });
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EAGAIN) {
            _error = errno;
        } else {
            waitFor(POLLOUT);
        }
    }
    return _error == 0;
}

std::optional<std::string> LineSocket::receive() {
    std::size_t searched = 0;
    while (_error == 0) {
        const std::size_t end = _received.find('\n', searched);
        if (end != std::string::npos) {
            std::string line = _received.substr(0, end);
            _received.erase(0, end + 1);
            return line;
        }
        searched = _received.size();
        receiveMore();
    }
    return std::nullopt;
}

void LineSocket::receiveMore() {
    std::array<char, 4096> piece;
    while (waitFor(POLLIN)) {
        const ssize_t got =
            uninterrupted([&] { return ::recv(_fd.get(), piece.data(), piece.size(), 0); });
        if (got > 0) {
            _received.append(piece.data(), static_cast<std::size_t>(got));
            _total += static_cast<std::size_t>(got);
            _error = _total > maxBytes ? EMSGSIZE : 0;
            return;
        }
        if (got == 0 || errno != EAGAIN) {
            _error = got == 0 ? ECONNRESET : errno;
        }
    }
}

bool LineSocket::waitFor(short events) {
    while (_error == 0) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            _deadline - std::chrono::steady_clock::now());
        pollfd entry{_fd.get(), events, 0};
        const int ready = left.count() > 0 ? ::poll(&entry, 1, static_cast<int>(left.count())) : 0;
        if (ready > 0) {
            return true;
        }
        if (ready == 0) {
            _error = ETIMEDOUT;
        } else if (errno != EINTR) {
            _error = errno;
        }
    }
    return false;
}

}  // namespace tessaly::platform
