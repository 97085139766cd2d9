// SPDX-License-Identifier: MIT
#include "platform/file_lease.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <thread>

namespace tessaly::platform {

FileLease::State FileLease::attempt() {
    // The usual signal to a holder whose lease is wanted would end the process; this one is
    // ignored.
    if (::fcntl(_fd, F_SETSIG, SIGURG) != 0) {
        return State::unknown;
    }
    if (::fcntl(_fd, F_SETLEASE, F_RDLCK) == 0) {
        return State::held;
    }
    return errno == EAGAIN ? State::busy : State::unknown;
}

FileLease::State FileLease::take(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    _state = attempt();
    while (_state == State::busy && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        _state = attempt();
    }
    return _state;
}

bool FileLease::isWanted() const {
    return _state == State::held && ::fcntl(_fd, F_GETLEASE) != F_RDLCK;
}

void FileLease::giveBack() {
    if (_state == State::held) {
        ::fcntl(_fd, F_SETLEASE, F_UNLCK);
    }
    _state = State::none;
}

}  // namespace tessaly::platform
