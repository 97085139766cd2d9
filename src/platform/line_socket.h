// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

namespace tessaly::platform {

/// A connection to a program on this machine that speaks in lines. Neither its silence nor its
/// flood holds us up: both end at the deadline or after `maxBytes` of answers.
class LineSocket {
public:
    using Deadline = std::chrono::steady_clock::time_point;
    static constexpr std::size_t maxBytes = 256 << 10;

    LineSocket(const std::string& path, Deadline deadline);

    /// 0, or why the last of its operations did not succeed: an error's number, as `ETIMEDOUT`, or
    /// `EMSGSIZE` for too long an answer, `ECONNRESET` when the other side went.
    int error() const { return _error; }

    bool send(std::string_view bytes);

    /// The next line, without its end. Nothing: see `error`.
    std::optional<std::string> receive();

private:
    bool waitFor(short events);
    void receiveMore();

    FileDescriptor _fd;
    Deadline _deadline;
    int _error = 0;
    std::string _received;  ///< not taken yet
    std::size_t _total = 0;
};

}  // namespace tessaly::platform
