// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace tessaly::platform {

/// A read lease on a file that is open for reading only: while it is held, no program has the file
/// open for writing, and one that wants to waits until it is given back (or, by the kernel's
/// setting, some 45 seconds). Given back with this object, before the file is closed.
class FileLease {
public:
    enum class State {
        none,
        held,
        busy,     ///< some program has the file open for writing
        unknown,  ///< no leases here, or not for us: nothing can be said about other programs
    };

    explicit FileLease(int fd) : _fd(fd) {}
    ~FileLease() { giveBack(); }
    FileLease(const FileLease&) = delete;
    FileLease& operator=(const FileLease&) = delete;

    /// Takes it once no program has the file open for writing; `busy` after `limit`.
    State take(std::chrono::milliseconds limit);

    /// Whether a program waits to open the file for writing, or the kernel has let one.
    bool isWanted() const;

    void giveBack();

private:
    State attempt();

    int _fd;
    State _state = State::none;
};

}  // namespace tessaly::platform
